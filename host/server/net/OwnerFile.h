// A file that only its owner can read.
//
// Thread: any.
#pragma once

#include <filesystem>

namespace vesk {

// Makes an empty one. False when there is one of that name, or it cannot.
bool MakeForOwner(const std::filesystem::path& path);
// Whether the system keeps others from reading it. What does not exist, nobody reads.
bool IsForOwner(const std::filesystem::path& path);

} // namespace vesk
