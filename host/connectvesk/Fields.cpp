#include "host/connectvesk/Fields.h"

#include "host/connectvesk/Fault.h"

namespace qmx {
namespace {

char* MessageStart(void* scratch) {
    return static_cast<char*>(scratch) + kFillSize;
}

// Most values are short, and two overlapping moves beat a call.
void CopyBytes(char* to, const char* from, std::uint32_t length) {
    if (length >= 8 && length <= 16) {
        std::uint64_t head;
        std::uint64_t tail;
        std::memcpy(&head, from, 8);
        std::memcpy(&tail, from + length - 8, 8);
        std::memcpy(to, &head, 8);
        std::memcpy(to + length - 8, &tail, 8);
    } else if (length >= 4 && length < 8) {
        const std::uint32_t head = Load(from);
        const std::uint32_t tail = Load(from + length - 4);
        Store(to, head);
        Store(to + length - 4, tail);
    } else if (length > 16) {
        std::memmove(to, from, length);
    } else if (length) {
        to[0] = from[0];
        to[length / 2] = from[length / 2];
        to[length - 1] = from[length - 1];
    }
}

int CheckWritable(const Message& message, QmxError* error) {
    if (message.state == Message::State::writing) return 1;
    if (message.state == Message::State::reading)
        return Fail(error, kQmxBadHandle, "a received message cannot be added to");
    return Fail(error, kQmxBadHandle, "no message was started");
}

// The bytes a message may have in its scratch buffer; 0 when message and buffer no longer go together.
std::uint32_t CheckScratch(const Message& message, QmxError* error) {
    const ScratchPrefix* prefix = PrefixOf(message.scratch);
    if (!prefix) {
        Fail(error, kQmxBadHandle, "the message's scratch buffer is closed");
        return 0;
    }
    const std::uint32_t fill = Load(message.scratch);
    const std::uint32_t capacity = prefix->capacity - kFillSize;
    if (fill == message.used && fill <= capacity) return capacity;
    Fail(error, kQmxCorrupt, "fill length is %u, %u bytes were written", fill, message.used);
    return 0;
}

int Absent(std::uint32_t tag, QmxError* error) {
    return Fail(error, kQmxFieldAbsent, "field %u is absent", tag);
}

// Looks from `from` up to `to`. 1: found, 0: failed, -1: not there.
int FindBetween(Message& message, std::uint32_t from, std::uint32_t to, std::uint32_t tag, FoundField& found,
                QmxError* error) {
    std::uint32_t position = from;
    while (position < to) {
        if (!NextField(message, position, found, error)) return 0;
        if (found.header.tag != tag) continue;
        message.resume = position;
        return 1;
    }
    return -1;
}

int CheckNotThere(Message& message, std::uint32_t tag, QmxError* error) {
    FoundField before;
    const int found = FindBetween(message, kHeaderSize, message.used, tag, before, error);
    if (found == 1) return Fail(error, kQmxBadArgument, "field %u is already in the message", tag);
    return found != 0;
}

int CheckField(const Message& message, const FoundField& found, QmxError* error) {
    const char* from = message.bytes + found.values;
    std::uint32_t left = found.header.size;
    std::uint32_t values = 0;
    for (; left >= kLengthSize && values < found.header.count; ++values) {
        const std::uint32_t length = Load(from);
        if (length > left - kLengthSize) break;
        from += kLengthSize + length;
        left -= kLengthSize + length;
    }
    if (values == 0 || values != found.header.count || left != 0)
        return Fail(error, kQmxCorrupt, "field %u does not hold the %u values it claims", found.header.tag,
                    found.header.count);
    return 1;
}

} // namespace

int StartMessage(Message& message, void* scratch, QmxError* error) {
    if (message.state == Message::State::reading)
        return Fail(error, kQmxBadHandle, "a received message cannot be started");
    // After a failure nothing may be appended to the message before.
    message.state = Message::State::idle;
    const ScratchPrefix* prefix = PrefixOf(scratch);
    if (!prefix) return Fail(error, kQmxBadHandle, "not an open scratch buffer");
    if (prefix->capacity < kFillSize + kHeaderSize)
        return Fail(error, kQmxBufferFull, "a scratch buffer of %u bytes holds no message", prefix->capacity);
    if (const std::uint32_t fill = Load(static_cast<char*>(scratch)); fill != 0)
        return Fail(error, kQmxBadArgument, "fill length is %u before the start, not 0", fill);

    message.state = Message::State::writing;
    message.scratch = static_cast<char*>(scratch);
    message.bytes = MessageStart(scratch);
    message.used = kHeaderSize;
    message.resume = kHeaderSize;
    message.tags = TagFilter();
    Store(MessageStart(scratch), kSignature);
    Store(MessageStart(scratch) + 4, kHeaderSize);
    Store(message.scratch, kHeaderSize);
    return Succeed(error);
}

int AddField(Message& message, std::uint32_t tag, std::uint32_t count, const QmxDatum* data, QmxError* error) {
    if (!CheckWritable(message, error)) return 0;
    const std::uint32_t capacity = CheckScratch(message, error);
    if (!capacity) return 0;
    if (count == 0 || !data) return Fail(error, kQmxBadArgument, "field %u has no values", tag);
    if (message.tags.MayHave(tag) && !CheckNotThere(message, tag, error)) return 0;
    const std::uint32_t room = capacity - message.used;
    // A count that cannot fit is refused before the caller's array is walked.
    if (room < kFieldHeaderSize || (room - kFieldHeaderSize) / kLengthSize < count)
        return Fail(error, kQmxBufferFull, "no room for field %u of %u values", tag, count);

    char* const field = MessageStart(message.scratch) + message.used;
    std::uint32_t size = kFieldHeaderSize;
    for (std::uint32_t i = 0; i < count; ++i) {
        const QmxDatum datum = data[i];
        if (!datum.data && datum.length)
            return Fail(error, kQmxBadArgument, "value %u: null with length %u", i, datum.length);
        if (room - size < kLengthSize || datum.length > room - size - kLengthSize)
            return Fail(error, kQmxBufferFull, "no room for value %u of field %u", i, tag);
        Store(field + size, datum.length);
        CopyBytes(field + size + kLengthSize, datum.data, datum.length);
        size += kLengthSize + datum.length;
    }
    // Only now does the field belong to the message.
    Store(field, tag);
    Store(field + 4, count);
    Store(field + 8, size - kFieldHeaderSize);
    message.used += size;
    message.tags.Add(tag);
    Store(message.scratch, message.used);
    Store(MessageStart(message.scratch) + 4, message.used);
    return Succeed(error);
}

int CheckReadable(const Message& message, QmxError* error) {
    switch (message.state) {
    case Message::State::reading:
        return 1;
    case Message::State::writing:
        return CheckScratch(message, error) != 0;
    case Message::State::idle:
        break;
    }
    return Fail(error, kQmxBadHandle, "no message was started");
}

int NextField(const Message& message, std::uint32_t& position, FoundField& found, QmxError* error) {
    const std::uint32_t left = message.used - position;
    if (left < kFieldHeaderSize) return Fail(error, kQmxCorrupt, "%u stray bytes at offset %u", left, position);
    const char* from = message.bytes + position;
    found.header = {Load(from), Load(from + 4), Load(from + 8)};
    found.values = position + kFieldHeaderSize;
    if (found.header.size > left - kFieldHeaderSize)
        return Fail(error, kQmxCorrupt, "field %u at offset %u claims %u bytes, %u are left", found.header.tag,
                    position, found.header.size, left - kFieldHeaderSize);
    position = found.values + found.header.size;
    return 1;
}

int FindField(Message& message, std::uint32_t tag, FoundField& found, QmxError* error) {
    if (!message.tags.MayHave(tag)) return Absent(tag, error);
    // Fields are mostly asked for in their order, so the search goes on behind the last one found.
    const std::uint32_t resume = message.resume;
    int result = FindBetween(message, resume, message.used, tag, found, error);
    // Bytes overwritten for a while may have left it between two fields: then the whole message counts.
    const std::uint32_t end = result < 0 ? resume : message.used;
    if (result <= 0) result = FindBetween(message, kHeaderSize, end, tag, found, error);
    if (result < 0) return Absent(tag, error);
    return result ? Succeed(error) : 0;
}

int ReadField(Message& message, std::uint32_t tag, std::uint32_t index, QmxDatum& datum, QmxError* error) {
    FoundField found;
    return FindField(message, tag, found, error) && ReadValue(message, found, index, datum, error);
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
    message.tags = TagFilter();
    for (std::uint32_t position = kHeaderSize; position < message.used;) {
        const std::uint32_t fieldStart = position;
        FoundField found;
        if (!NextField(message, position, found, error) || !CheckField(message, found, error)) return 0;
        if (FoundField before;
            message.tags.MayHave(found.header.tag)
            && FindBetween(message, kHeaderSize, fieldStart, found.header.tag, before, error) == 1)
            return Fail(error, kQmxCorrupt, "field %u stands twice", found.header.tag);
        message.tags.Add(found.header.tag);
    }
    message.resume = kHeaderSize;
    message.state = Message::State::reading;
    return Succeed(error);
}

} // namespace qmx
