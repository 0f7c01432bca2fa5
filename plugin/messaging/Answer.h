// Reading answers and stream messages, and handing an answer to the handler of its request.
#pragma once

#include "plugin/messaging/Session.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace planfold {

// What GetFieldString reports beside its result.
inline constexpr int kFieldRead = 0;
inline constexpr int kFieldUnreadable = 3;
inline constexpr int kFieldNotPresent = 7;

// Value `index` of a field. On failure the text is empty and `status` says why.
bool GetFieldString(void* message, std::uint32_t tag, std::uint32_t index, std::string& text, int& status);
// The same as a number: the whole number at the start of the value's first 32 bytes; 0 on failure.
bool GetFieldNumber(void* message, std::uint32_t tag, std::uint32_t index, std::int64_t& number, int& status);

// The value, or empty when it is not there.
std::string FieldText(void* message, std::uint32_t tag, std::uint32_t index = 0);
// The same without a copy, valid as long as the message; none when it is not there.
std::optional<std::string_view> FieldView(void* message, std::uint32_t tag);
// How many values the field holds; 0 without the field.
std::uint32_t FieldCount(void* message, std::uint32_t tag);

// An answer with the two fields that every answer is sorted by. The message is valid during the call only.
struct Answer {
    explicit Answer(void* received);

    void* message;
    std::string request; // echoed name; empty when there is none
    bool hasError;
    std::string errorCode;
};

// "Error in response : ..." in the tabbed log.
void LogErrorAnswer(Pass pass, const Session& session, const Answer& answer);

enum class OnError {
    logAndStop,
    logAndHandle, // the handler still runs after the line
    handle,       // the handler decides; nothing is logged
};

template <class Window>
struct AnswerHandler {
    std::string_view request;
    void (Window::*handle)(const Answer&);
    OnError onError = OnError::logAndStop;
};

// An error answer that matches no row is logged all the same; any other without a row is ignored.
template <class Window>
void Dispatch(Window& window, const Session& session, std::span<const AnswerHandler<Window>> handlers,
              const Answer& answer) {
    const AnswerHandler<Window>* handler = nullptr;
    for (const auto& row : handlers)
        if (row.request == answer.request) handler = &row;
    const OnError onError = handler ? handler->onError : OnError::logAndStop;
    const bool goesOn = session.life.Across([&](Pass pass) {
        if (answer.hasError && onError != OnError::handle) LogErrorAnswer(pass, session, answer);
    });
    if (!goesOn || (answer.hasError && onError == OnError::logAndStop)) return;
    if (handler) (window.*handler->handle)(answer);
}

} // namespace planfold
