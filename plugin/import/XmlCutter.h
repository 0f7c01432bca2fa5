// Cuts the elements of one name out of a part of a workbook, so that each can be parsed by itself and the whole
// never stands in memory. What would make a parser go deep or a text grow is refused here.
#pragma once

#include "plugin/import/ZipFile.h"

#include <string>
#include <string_view>

namespace planfold {

class XmlCutter {
public:
    static constexpr char kBroken[] = "a part of the workbook is no XML, or was cut off";

    // The name is the local one: files may put a prefix in front.
    XmlCutter(ZipPart& part, std::string_view name) : m_part(part), m_name(name) {}

    // The next such element with all that is in it, also one that stands in another. False at the end, and when
    // Fault says why.
    bool Next(std::string& element);
    const std::string& Fault() const { return m_fault; }

private:
    struct Tag {
        std::size_t begin = 0, end = 0; // in the buffer
        bool isEnd = false, isEmpty = false;
    };

    bool NextTag(Tag& tag);
    std::size_t Find(std::string_view what, std::size_t from);
    std::size_t EndOfTag(std::size_t from);
    bool Fill();
    bool Refuse(std::string_view why);
    bool IsNamed(const Tag& tag) const;

    ZipPart& m_part;
    std::string m_name;
    std::string m_buffer;
    std::size_t m_at = 0;   // read up to here
    std::size_t m_keep = 0; // and needed from here
    int m_depth = 0;
    std::string m_fault;
};

} // namespace planfold
