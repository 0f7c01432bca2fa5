// What planfold-hostcheck finds in an image, also in a broken one.
#include "tools/planfold-hostcheck/Findings.h"

#include <gtest/gtest.h>

namespace {

using hostcheck::State;

void Put(std::string& image, std::size_t at, std::uint64_t number, std::size_t bytes = 4) {
    for (std::size_t i = 0; i < bytes; ++i)
        image[at + i] = static_cast<char>(number >> 8 * i);
}

// A 64-bit library of two sections, code at 0x1000 and the export table at 0x2000. Names with a "*" are data.
std::string ImageWith(const std::vector<std::string>& names) {
    constexpr std::size_t header = 0x40, optional = header + 24, sections = optional + 240;
    constexpr std::uint32_t place = 0x400, table = 0x2000, size = 0x1000;
    std::string image(place + size, '\0');
    image.replace(0, 2, "MZ");
    Put(image, 0x3C, header);
    image.replace(header, 2, "PE");
    Put(image, header + 4, 0x8664, 2);
    Put(image, header + 6, 2, 2);
    Put(image, header + 20, 240, 2);
    Put(image, optional, 0x20B, 2);
    Put(image, optional + 112, table);
    Put(image, optional + 116, 40);
    const std::uint32_t code[] = {0x1000, 0x200, 0x200, 0x60000020}, data[] = {table, size, place, 0x40000040};
    for (std::size_t i = 0; i < 4; ++i) {
        const std::size_t offset = i == 3 ? 36 : 12 + i * 4;
        Put(image, sections + offset, code[i]);
        Put(image, sections + 40 + offset, data[i]);
    }
    const auto count = static_cast<std::uint32_t>(names.size());
    Put(image, place + 20, count);
    Put(image, place + 24, count);
    for (std::uint32_t i = 0; i < 3; ++i)
        Put(image, place + 28 + i * 4, table + 0x40 + i * 0x100);
    for (std::uint32_t i = 0, text = 0x400; i < count; ++i) {
        const bool isData = names[i].starts_with('*');
        const std::string name = names[i].substr(isData);
        Put(image, place + 0x40 + i * 4, isData ? table + 0x800 : 0x1000);
        Put(image, place + 0x140 + i * 4, table + text);
        Put(image, place + 0x240 + i * 2, i, 2);
        image.replace(place + text, name.size(), name);
        text += static_cast<std::uint32_t>(name.size()) + 1;
    }
    return image;
}

TEST(HostCheck, NamesWhatIsMissingAndWhatStandsUnderAnotherName) {
    const std::string image =
        ImageWith({"pu_get_exe_app", "?pu_get_peer_data@@YAHXZ", "DestroyKeloRxControl", "*pu_get_uuid",
                   "pu_get_client_name", "PU_GET_ACTIVECLIENT", "another"});
    std::string why;
    const auto exports = hostcheck::ReadExports(image, why);
    ASSERT_TRUE(exports) << why;
    const hostcheck::Findings findings = hostcheck::Examine(*exports, "host.exe");
    EXPECT_FALSE(findings.isPlugin);
    const struct {
        const char* name;
        State state;
        const char* detail;
    } cases[] = {
        {"pu_get_exe_app", State::present, ""},
        {"pu_get_peer_data", State::wrong, "is exported as ?pu_get_peer_data@@YAHXZ"},
        {"DestoryKeloRxCOntrol", State::wrong, "is exported as DestroyKeloRxControl"},
        {"pu_get_uuid", State::wrong, "is not a function"},
        {"pu_get_client_name", State::present, ""},
        {"pu_get_ActiveClient", State::wrong, "is exported as PU_GET_ACTIVECLIENT"},
        {"pu_get_UserDirectory", State::missing, ""},
    };
    for (const auto& [name, state, detail] : cases) {
        const auto found =
            std::ranges::find(findings.exports, std::string_view(name), &hostcheck::Finding::name);
        ASSERT_NE(found, findings.exports.end()) << name;
        EXPECT_EQ(found->state, state) << name;
        EXPECT_EQ(found->detail, detail) << name;
    }
    EXPECT_TRUE(findings.Lacks(sdk::Need::always));
    const std::string text = AsText(findings, "host.exe");
    EXPECT_NE(text.find("host.exe: pu_get_UserDirectory is missing (comfort): layouts"), text.npos) << text;
    EXPECT_NE(text.find("a host, 2 of 37 exports"), text.npos) << text;
    EXPECT_NE(AsJson(findings, "host.exe").find(R"("detail": "is not a function")"), std::string::npos);
    EXPECT_TRUE(
        hostcheck::Examine(std::vector<hostcheck::Export>{{"InitVeskPlugin", true}}, "any.dll").isPlugin);
    EXPECT_TRUE(hostcheck::Examine({}, "Other.zup").isPlugin);
}

TEST(HostCheck, ABrokenImageIsOnlyRefused) {
    const std::string image = ImageWith({"pu_get_exe_app", "pu_get_uuid"});
    std::string why;
    for (std::size_t size = 0; size < image.size(); size += size < 0x800 ? 1 : 64)
        hostcheck::ReadExports(image.substr(0, size), why); // a copy: what is read behind it is seen
    for (std::size_t at = 0; at < 0x840; ++at)
        for (const char byte : {'\x00', '\x7F', '\xFF'}) {
            std::string broken = image;
            broken[at] = byte;
            hostcheck::ReadExports(broken, why);
        }
    std::string small = image;
    Put(small, 0x44, 0x14C, 2);
    EXPECT_FALSE(hostcheck::ReadExports(small, why));
    EXPECT_EQ(why, "is not a 64-bit image: the plug-in is one, and loads into no other");
    EXPECT_FALSE(hostcheck::ReadExports("#!/bin/sh", why));
    EXPECT_EQ(why, "is not a program or library for Windows");
}

} // namespace
