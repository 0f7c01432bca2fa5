// Framework strings and arrays through any sequence of operations, over two managers: always the text that a
// plain string would have, and no buffer left.

#include "fuzz/Fuzz.h"
#include "sdk/CStringArray.h"
#include "sdk/HeapStringManager.h"

#include <array>
#include <utility>
#include <vector>

using fuzz::Demand;

namespace {

class Player {
public:
    Player(HeapStringManager& a, HeapStringManager& b)
        : m_managers{&a, &b}, m_strings{CString(a), CString(a), CString(b), CString(b)} {}

    void Step(fuzz::Input& input) {
        const unsigned operation = input.Byte();
        const std::size_t to = input.Byte() % m_strings.size();
        const std::size_t from = input.Byte() % m_strings.size();
        switch (operation % 6) {
        case 0:
            return Set(to, input.Line());
        case 1:
            m_strings[to] = std::as_const(m_strings[from]);
            m_models[to] = m_models[from];
            return;
        case 2: { // a part of the own buffer
            const std::size_t at = operation % (m_models[to].size() + 1);
            m_strings[to] = m_strings[to].View().substr(at, from);
            m_models[to] = m_models[to].substr(at, from);
            return;
        }
        case 3: { // passed by value
            PassedString passed(m_models[from], *m_managers[operation % 2]);
            const TakenString taken(passed.Hand());
            return Set(to, std::string(taken.View()));
        }
        case 4: { // copied while the original is being written
            StringHeader* header =
                reinterpret_cast<StringHeader*>(const_cast<char*>(m_strings[from].c_str())) - 1;
            const std::int32_t references = std::exchange(header->references, -1);
            const CString copy(m_strings[from]);
            header->references = references;
            Demand(copy.View() == m_models[from] && copy.c_str() != m_strings[from].c_str());
            return;
        }
        default:
            m_array.Append(m_models[from], *m_managers[operation % 2]);
            m_arrayModel.push_back(m_models[from]);
        }
    }

    void Check() const {
        for (std::size_t i = 0; i < m_strings.size(); ++i) {
            Demand(m_strings[i].View() == m_models[i]);
            Demand(m_strings[i].c_str()[m_models[i].size()] == '\0');
        }
        const auto elements = m_array.Elements();
        Demand(elements.size() == m_arrayModel.size());
        for (std::size_t i = 0; i < elements.size(); ++i)
            Demand(elements[i].View() == m_arrayModel[i]);
    }

private:
    void Set(std::size_t to, const std::string& text) {
        m_strings[to] = text;
        m_models[to] = text;
    }

    std::array<HeapStringManager*, 2> m_managers;
    std::array<CString, 4> m_strings;
    std::array<std::string, 4> m_models;
    CStringArray m_array;
    std::vector<std::string> m_arrayModel;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    HeapStringManager a, b;
    {
        fuzz::Input input(data, size);
        Player player(a, b);
        for (int steps = 0; steps < 200 && !input.AtEnd(); ++steps) {
            player.Step(input);
            player.Check();
        }
    }
    Demand(a.LiveBuffers() == 0 && b.LiveBuffers() == 0);
    return 0;
}
