#include "host/connectvesk/Fields.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace qmx {
namespace {

char* MessageStart(void* scratch) {
    return static_cast<char*>(scratch) + kFillSize;
}

constexpr std::uint32_t kShortValue = 16;

// Most values are short, and two overlapping moves beat a call.
void CopyShort(char* to, const char* from, std::uint32_t length) {
    if (length >= 8) {
        std::uint64_t head;
        std::uint64_t tail;
        std::memcpy(&head, from, 8);
        std::memcpy(&tail, from + length - 8, 8);
        std::memcpy(to, &head, 8);
        std::memcpy(to + length - 8, &tail, 8);
    } else if (length >= 4) {
        const std::uint32_t head = Load(from);
        const std::uint32_t tail = Load(from + length - 4);
        Store(to, head);
        Store(to + length - 4, tail);
    } else if (length) {
        to[0] = from[0];
        if (length > 1) std::memcpy(to + length - 2, from + length - 2, 2);
    }
}

// Whether the message is being written, and it and its buffer still tell the same.
bool IsWritable(const Message& message) {
    return message.state == Message::State::writing && PrefixBefore(message.scratch)->seal == message.seal
           && Load(message.scratch) == message.used;
}

bool IsReadable(const Message& message) {
    return message.state == Message::State::reading || IsWritable(message);
}

// The failures are told apart only once there is one: this keeps the way of a good field short.
[[gnu::cold, gnu::noinline]] int TellNotWritable(const Message& message, QmxError* error) {
    if (message.state == Message::State::reading)
        return Fail(error, kQmxBadHandle, "a received message cannot be added to");
    if (message.state == Message::State::idle) return Fail(error, kQmxBadHandle, "no message was started");
    if (!IsOpen(*PrefixBefore(message.scratch)))
        return Fail(error, kQmxBadHandle, "the message's scratch buffer is closed");
    return Fail(error, kQmxCorrupt, "fill length is %u, %u bytes were written", Load(message.scratch),
                message.used);
}

int Absent(std::uint32_t tag, QmxError* error) {
    return Fail(error, kQmxFieldAbsent, "field %u is absent", tag);
}

// The field at `position`, which moves behind it. False when it does not lie wholly inside the message.
bool StepOver(const Message& message, std::uint32_t& position, FoundField& found) {
    const std::uint32_t left = message.used - position;
    if (left < kFieldHeaderSize) return false;
    const char* from = message.bytes + position;
    found.header = {Load(from), Load(from + 4), Load(from + 8)};
    found.values = position + kFieldHeaderSize;
    if (found.header.size > left - kFieldHeaderSize) return false;
    position = found.values + found.header.size;
    return true;
}

[[gnu::cold, gnu::noinline]] int TellBadField(const Message& message, std::uint32_t position, QmxError* error) {
    const std::uint32_t left = message.used - position;
    if (left < kFieldHeaderSize) return Fail(error, kQmxCorrupt, "%u stray bytes at offset %u", left, position);
    const char* from = message.bytes + position;
    return Fail(error, kQmxCorrupt, "field %u at offset %u claims %u bytes, %u are left", Load(from), position,
                Load(from + 8), left - kFieldHeaderSize);
}

// Looks from `from` up to `to`. 1: found, 0: failed, -1: not there.
int FindBetween(Message& message, std::uint32_t from, std::uint32_t to, std::uint32_t tag, FoundField& found,
                QmxError* error) {
    std::uint32_t position = from;
    while (position < to) {
        if (!StepOver(message, position, found)) return TellBadField(message, position, error);
        if (found.header.tag != tag) continue;
        message.resume = position;
        return 1;
    }
    return -1;
}

// Fields asked for out of their order, and absent ones.
[[gnu::noinline]] int FindElsewhere(Message& message, std::uint32_t tag, FoundField& found, QmxError* error) {
    if (!message.tags.MayHave(tag)) return Absent(tag, error);
    const std::uint32_t resume = message.resume;
    int result = FindBetween(message, resume, message.used, tag, found, error);
    // Bytes overwritten for a while may have left it between two fields: then the whole message counts.
    const std::uint32_t end = result < 0 ? resume : message.used;
    if (result <= 0) result = FindBetween(message, kHeaderSize, end, tag, found, error);
    if (result < 0) return Absent(tag, error);
    return result ? Succeed(error) : 0;
}

[[gnu::noinline]] int CheckNotThere(Message& message, std::uint32_t tag, QmxError* error) {
    FoundField before;
    const int found = FindBetween(message, kHeaderSize, message.used, tag, before, error);
    if (found == 1) return Fail(error, kQmxBadArgument, "field %u is already in the message", tag);
    return found != 0;
}

// Makes the field, whose tag is in the filter, part of the message, which ends behind it now. Gives the place of
// its values, which are there or written at once.
char* Append(Message& message, std::uint32_t tag, std::uint32_t count, std::uint32_t end) {
    char* const scratch = message.scratch;
    char* const field = MessageStart(scratch) + message.used;
    const std::uint32_t size = end - message.used - kFieldHeaderSize;
    message.used = end;
    Store(scratch, end);
    Store(MessageStart(scratch) + 4, end);
    Store(field, tag);
    Store(field + 4, count);
    Store(field + 8, size);
    return field + kFieldHeaderSize;
}

[[gnu::noinline]] int AddAnyField(Message* started, std::uint32_t tag, std::uint32_t count,
                                  const QmxDatum* data, QmxError* error) {
    if (!started) return TellBadMessage(error);
    Message& message = *started;
    if (!IsWritable(message)) return TellNotWritable(message, error);
    if (count == 0 || !data) return Fail(error, kQmxBadArgument, "field %u has no values", tag);
    if (message.tags.MayHave(tag) && !CheckNotThere(message, tag, error)) return 0;
    // A count that cannot fit is refused before the caller's array is walked.
    const std::uint64_t overhead = kFieldHeaderSize + std::uint64_t{kLengthSize} * count;
    std::uint64_t left = message.limit - message.used;
    if (left < overhead) return Fail(error, kQmxBufferFull, "no room for field %u of %u values", tag, count);

    left -= overhead; // which leaves it to the bytes of all values
    char* const values = MessageStart(message.scratch) + message.used + kFieldHeaderSize;
    char* to = values;
    for (std::uint32_t i = 0; i < count; ++i) {
        const char* const from = data[i].data;
        const std::uint32_t length = data[i].length;
        if (!from && length) return Fail(error, kQmxBadArgument, "value %u: null with length %u", i, length);
        if (length > left) return Fail(error, kQmxBufferFull, "no room for value %u of field %u", i, tag);
        Store(to, length);
        if (length) std::memmove(to + kLengthSize, from, length);
        to += kLengthSize + length;
        left -= length;
    }
    message.tags.Add(tag);
    Append(message, tag, count, message.used + kFieldHeaderSize + static_cast<std::uint32_t>(to - values));
    return Succeed(error);
}

// A tag that stands twice among many, of which the filter tells nothing any more.
std::optional<std::uint32_t> FindRepeated(const Message& message) {
    std::vector<std::uint32_t> tags;
    FoundField found;
    for (std::uint32_t position = kHeaderSize; position < message.used && StepOver(message, position, found);)
        tags.push_back(found.header.tag);
    std::sort(tags.begin(), tags.end());
    const auto twice = std::adjacent_find(tags.begin(), tags.end());
    if (twice == tags.end()) return std::nullopt;
    return *twice;
}

bool HoldsItsValues(const Message& message, const FoundField& found) {
    const char* from = message.bytes + found.values;
    std::uint32_t left = found.header.size;
    if (found.header.count == 1) return left >= kLengthSize && Load(from) == left - kLengthSize;
    std::uint32_t values = 0;
    for (; left >= kLengthSize && values < found.header.count; ++values) {
        const std::uint32_t length = Load(from);
        if (length > left - kLengthSize) return false;
        from += kLengthSize + length;
        left -= kLengthSize + length;
    }
    return values != 0 && values == found.header.count && left == 0;
}

[[gnu::noinline]] int ReadAnyField(Message* opened, std::uint32_t tag, std::uint32_t index, QmxDatum* datum,
                                   QmxError* error) {
    if (!opened) return TellBadMessage(error);
    Message& message = *opened;
    if (!CheckReadable(message, error)) return 0;
    if (!datum) return Fail(error, kQmxBadArgument, "no place for the value");
    FoundField found;
    return FindField(message, tag, found, error) && ReadValue(message, found, index, *datum, error);
}

} // namespace

int TellBadMessage(QmxError* error) {
    return Fail(error, kQmxBadHandle, "not an open message handle");
}

int StartMessage(Message& message, void* scratch, QmxError* error) {
    if (message.state == Message::State::reading)
        return Fail(error, kQmxBadHandle, "a received message cannot be started");
    // After a failure nothing may be appended to the message before.
    message.state = Message::State::idle;
    const ScratchPrefix* prefix = PrefixOf(scratch);
    if (!prefix) return Fail(error, kQmxBadHandle, "not an open scratch buffer");
    if (prefix->capacity < kFillSize + kHeaderSize)
        return Fail(error, kQmxBufferFull, "a scratch buffer of %u bytes holds no message",
                    static_cast<unsigned>(prefix->capacity));
    if (const std::uint32_t fill = Load(static_cast<char*>(scratch)); fill != 0)
        return Fail(error, kQmxBadArgument, "fill length is %u before the start, not 0", fill);

    message.state = Message::State::writing;
    message.scratch = static_cast<char*>(scratch);
    message.seal = prefix->seal;
    message.limit = static_cast<std::uint32_t>(prefix->capacity) - kFillSize;
    message.bytes = MessageStart(scratch);
    message.used = kHeaderSize;
    message.resume = kHeaderSize;
    message.tags = TagFilter();
    Store(MessageStart(scratch), kSignature);
    Store(MessageStart(scratch) + 4, kHeaderSize);
    Store(message.scratch, kHeaderSize);
    return Succeed(error);
}

int AddField(void* handle, std::uint32_t tag, std::uint32_t count, const QmxDatum* data, QmxError* error) {
    Message* const message = AsMessage(handle);
    // One short value that fits, under a new tag, is the ordinary field. Whatever else there is, and every
    // fault, is left to the general way: so this one needs neither loop nor call.
    if (message && count == 1 && data && data->length <= kShortValue && (data->data || !data->length)
        && IsWritable(*message)) {
        // Member by member: the caller has just written them so, and one wider load would wait for its stores.
        const std::uint32_t length = data->length;
        const std::uint32_t end = message->used + kFieldHeaderSize + kLengthSize + length;
        if (end <= message->limit && message->tags.Add(tag)) {
            char* const value = Append(*message, tag, 1, end);
            Store(value, length);
            CopyShort(value + kLengthSize, data->data, length);
            return Succeed(error);
        }
    }
    return AddAnyField(message, tag, count, data, error);
}

int CheckReadable(const Message& message, QmxError* error) {
    return IsReadable(message) || TellNotWritable(message, error);
}

int NextField(const Message& message, std::uint32_t& position, FoundField& found, QmxError* error) {
    return StepOver(message, position, found) || TellBadField(message, position, error);
}

int FindField(Message& message, std::uint32_t tag, FoundField& found, QmxError* error) {
    // Fields are mostly asked for in their order, so the one behind the last one found comes first.
    std::uint32_t position = message.resume;
    if (!StepOver(message, position, found) || found.header.tag != tag)
        return FindElsewhere(message, tag, found, error);
    message.resume = position;
    return Succeed(error);
}

int ReadField(void* handle, std::uint32_t tag, std::uint32_t index, QmxDatum* datum, QmxError* error) {
    Message* const message = AsMessage(handle);
    // The first value of the received field behind the last one found is the ordinary wish.
    if (message && index == 0 && datum && message->state == Message::State::reading) {
        std::uint32_t position = message->resume;
        FoundField found;
        if (StepOver(*message, position, found) && found.header.tag == tag && found.header.count != 0
            && found.header.size >= kLengthSize) {
            const char* const value = message->bytes + found.values;
            const std::uint32_t length = Load(value);
            if (length <= found.header.size - kLengthSize) {
                message->resume = position;
                datum->data = value + kLengthSize;
                datum->length = length;
                return Succeed(error);
            }
        }
    }
    return ReadAnyField(message, tag, index, datum, error);
}

int ReadValue(const Message& message, const FoundField& field, std::uint32_t index, QmxDatum& datum,
              QmxError* error) {
    if (index >= field.header.count)
        return Fail(error, kQmxBadIndex, "field %u has %u values, not one of index %u", field.header.tag,
                    field.header.count, index);
    const char* from = message.bytes + field.values;
    std::uint32_t left = field.header.size;
    for (std::uint32_t i = 0;; ++i) {
        const std::uint32_t length = left < kLengthSize ? 0 : Load(from);
        if (left < kLengthSize || length > left - kLengthSize)
            return Fail(error, kQmxCorrupt, "value %u of field %u exceeds its field", i, field.header.tag);
        if (i == index) {
            datum = {from + kLengthSize, length};
            return Succeed(error);
        }
        from += kLengthSize + length;
        left -= kLengthSize + length;
    }
}

int OpenReceived(Message& message, const QmxDatum& bytes, QmxError* error) {
    if (!bytes.data) return Fail(error, kQmxBadArgument, "no bytes");
    if (bytes.length < kHeaderSize)
        return Fail(error, kQmxCorrupt, "incomplete message: %u bytes", bytes.length);
    if (Load(bytes.data) != kSignature) return Fail(error, kQmxCorrupt, "not a message: wrong signature");
    const std::uint32_t claimed = Load(bytes.data + 4);
    if (claimed > bytes.length)
        return Fail(error, kQmxCorrupt, "incomplete message: %u of %u bytes", bytes.length, claimed);
    if (claimed != bytes.length)
        return Fail(error, kQmxCorrupt, "message of %u bytes in %u", claimed, bytes.length);

    message.bytes = bytes.data;
    message.used = bytes.length;
    constexpr int mostLookedFor = 16; // with more, who sends a message could make it slow to open
    int maybes = 0;
    for (std::uint32_t position = kHeaderSize; position < message.used;) {
        const std::uint32_t fieldStart = position;
        FoundField found;
        if (!StepOver(message, position, found)) return TellBadField(message, position, error);
        if (!HoldsItsValues(message, found))
            return Fail(error, kQmxCorrupt, "field %u does not hold the %u values it claims", found.header.tag,
                        found.header.count);
        if (FoundField before;
            !message.tags.Add(found.header.tag) && ++maybes <= mostLookedFor
            && FindBetween(message, kHeaderSize, fieldStart, found.header.tag, before, error) == 1)
            return Fail(error, kQmxCorrupt, "field %u stands twice", found.header.tag);
    }
    if (maybes > mostLookedFor)
        if (const auto tag = FindRepeated(message))
            return Fail(error, kQmxCorrupt, "field %u stands twice", *tag);
    message.resume = kHeaderSize;
    message.state = Message::State::reading;
    return Succeed(error);
}

} // namespace qmx
