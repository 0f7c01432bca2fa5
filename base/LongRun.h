#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace base {

// Work that may take long, done in portions, so that the window keeps painting and the user can stop it.
class LongRun {
public:
    virtual bool IsUnderWay() const = 0;
    // The next portion; nothing when no run is under way.
    virtual void Continue() = 0;
    // The user wishes it.
    virtual void Stop() = 0;
    // No window can be made that would drive it.
    virtual void EndUnseen() { Stop(); }
    // Whether there is anything left that would not be done then.
    virtual bool CanStop() const { return true; }
    // How far it has come: a line for the user, and two numbers. Only while it is under way.
    virtual std::string Progress() const = 0;
    virtual std::size_t Done() const = 0;
    virtual std::size_t Total() const = 0;

protected:
    // What is done by the end of the first portion needs no progress window.
    static constexpr std::int64_t kFirstPortionMs = 500;
    static constexpr std::int64_t kFirstReckoningMs = 300; // where nothing is sent
    static constexpr std::int64_t kPortionMs = 50;         // each later one

    ~LongRun() = default;
};

} // namespace base
