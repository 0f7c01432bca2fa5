#include "bench/QuickFixPeer.h"

#include <quickfix/Message.h>

namespace bench {
namespace {

constexpr int kVersionTag = 8;
constexpr int kMessageTypeTag = 35;

} // namespace

struct QuickFixPeer::State {
    explicit State(Fields given) : fields(std::move(given)) { fields.front().first = kMessageTypeTag; }

    Fields fields;
    FIX::Message built;
    FIX::Message read;
    std::string text; // of the message built last
};

QuickFixPeer::QuickFixPeer(Fields fields) : m_state(new State(std::move(fields))) {
    EncodeAnew();
}

QuickFixPeer::~QuickFixPeer() = default;

std::size_t QuickFixPeer::Encode() {
    const Fields& fields = m_state->fields;
    m_state->built.getHeader().setField(kMessageTypeTag, fields.front().second);
    for (std::size_t i = 1; i < fields.size(); ++i)
        m_state->built.setField(fields[i].first, fields[i].second);
    return m_state->built.toString(m_state->text).size();
}

std::size_t QuickFixPeer::EncodeAnew() {
    m_state->built.clear();
    m_state->built.getHeader().setField(kVersionTag, "FIX.4.2");
    return Encode();
}

std::size_t QuickFixPeer::DecodeAndRead() {
    const Fields& fields = m_state->fields;
    m_state->read.setString(m_state->text, false);
    std::size_t bytes = m_state->read.getHeader().getField(kMessageTypeTag).size();
    for (std::size_t i = 1; i < fields.size(); ++i)
        bytes += m_state->read.getField(fields[i].first).size();
    return bytes;
}

} // namespace bench
