#include "plugin/orderbook/OrderInfo.h"

#include <cstring>
#include <new>

namespace planfold {

// In front of the texts, which lie one behind the other: where each ends, counted from the first.
struct sOrderinfo::Head {
    std::array<std::uint32_t, kOrderFieldCount> ends;

    char* Texts() { return reinterpret_cast<char*>(this + 1); }
    const char* Texts() const { return reinterpret_cast<const char*>(this + 1); }
};

namespace {

// The key comes first: a look-up compares it, and finds it beside the head.
constexpr std::size_t Place(OrderField field) {
    const auto index = static_cast<std::size_t>(field);
    constexpr auto key = static_cast<std::size_t>(OrderField::registrationNumber);
    return index == key ? 0 : index < key ? index + 1 : index;
}

} // namespace

void sOrderinfo::Freed::operator()(Head* block) const {
    ::operator delete(block);
}

std::string_view sOrderinfo::Text(OrderField field) const {
    if (!m_block) return {};
    const std::size_t place = Place(field);
    const std::uint32_t begin = place ? m_block->ends[place - 1] : 0;
    return {m_block->Texts() + begin, m_block->ends[place] - begin};
}

void sOrderinfo::Apply(const OrderChanges& changes) {
    std::array<std::string_view, kOrderFieldCount> texts;
    std::size_t length = 0;
    bool changed = false;
    bool sameLengths = m_block != nullptr;
    for (std::size_t i = 0; i < kOrderFieldCount; ++i) {
        const auto field = static_cast<OrderField>(i);
        const std::string_view old = Text(field);
        const std::string_view text = changes[field].value_or(old);
        texts[Place(field)] = text;
        length += text.size();
        sameLengths = sameLengths && text.size() == old.size();
        changed = changed || text != old;
    }
    if (!changed) return;
    if (sameLengths) {
        for (std::size_t place = 0; place < kOrderFieldCount; ++place) {
            char* own = m_block->Texts() + (place ? m_block->ends[place - 1] : 0);
            if (own != texts[place].data()) std::memmove(own, texts[place].data(), texts[place].size());
        }
        return;
    }

    std::unique_ptr<Head, Freed> block(static_cast<Head*>(::operator new(sizeof(Head) + length)));
    std::uint32_t end = 0;
    for (std::size_t place = 0; place < kOrderFieldCount; ++place) {
        const std::string_view text = texts[place];
        if (!text.empty()) std::memcpy(block->Texts() + end, text.data(), text.size());
        block->ends[place] = end += static_cast<std::uint32_t>(text.size());
    }
    m_block = std::move(block);
}

} // namespace planfold
