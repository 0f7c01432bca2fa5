#include "plugin/orderbook/OrderInfo.h"

#include <cstring>
#include <new>

namespace planfold {

// In front of the texts, which lie one behind the other.
struct sOrderinfo::Head {
    std::array<std::uint32_t, kOrderFieldCount> ends; // counted from the first text
    std::uint32_t room;                               // for texts

    std::uint32_t Begin(std::size_t place) const { return place ? ends[place - 1] : 0; }
    std::uint32_t Length() const { return ends.back(); }
    char* Texts() { return reinterpret_cast<char*>(this + 1); }
};

void sOrderinfo::Freed::operator()(Head* block) const {
    ::operator delete(block);
}

std::string_view sOrderinfo::Text(OrderField field) const {
    if (!m_block) return {};
    const auto place = static_cast<std::size_t>(field);
    const std::uint32_t begin = m_block->Begin(place);
    return {m_block->Texts() + begin, m_block->ends[place] - begin};
}

void sOrderinfo::Apply(const OrderChanges& changes) {
    std::size_t growth = 0;
    for (std::size_t i = 0; i < kOrderFieldCount; ++i) {
        const auto field = static_cast<OrderField>(i);
        const auto& text = changes[field];
        if (!text) continue;
        const std::size_t size = Text(field).size();
        if (text->size() > size) growth += text->size() - size;
    }
    if (growth) MakeRoom(growth);
    if (!m_block) return;
    for (std::size_t i = 0; i < kOrderFieldCount; ++i) {
        const auto field = static_cast<OrderField>(i);
        if (changes[field]) Set(field, *changes[field]);
    }
}

// Blocks are a little larger than their texts, so that most changes find room.
void sOrderinfo::MakeRoom(std::size_t growth) {
    const std::size_t length = m_block ? m_block->Length() : 0;
    if (m_block && length + growth <= m_block->room) return;
    constexpr std::size_t step = 64;
    const std::size_t bytes = (sizeof(Head) + length + growth + step - 1) / step * step;
    std::unique_ptr<Head, Freed> block(static_cast<Head*>(::operator new(bytes)));
    if (m_block)
        std::memcpy(block.get(), m_block.get(), sizeof(Head) + length);
    else
        block->ends.fill(0);
    block->room = static_cast<std::uint32_t>(bytes - sizeof(Head));
    m_block = std::move(block);
}

// There is room.
void sOrderinfo::Set(OrderField field, std::string_view text) {
    const std::string_view old = Text(field);
    if (text == old) return;
    const auto place = static_cast<std::size_t>(field);
    char* at = m_block->Texts() + m_block->Begin(place);
    if (text.size() != old.size()) {
        std::memmove(at + text.size(), at + old.size(), m_block->Length() - m_block->ends[place]);
        const auto difference = static_cast<std::uint32_t>(text.size() - old.size());
        for (std::size_t i = place; i < kOrderFieldCount; ++i)
            m_block->ends[i] += difference;
    }
    text.copy(at, text.size());
}

} // namespace planfold
