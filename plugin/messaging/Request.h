// Requests as tables: a name, and rows of tag, where the value comes from, and the text shown when it cannot be
// added. One engine builds and sends them all.
#pragma once

#include "plugin/messaging/Session.h"
#include "sdk/RxControl.h"
#include "sdk/Tags.h"

#include <array>
#include <optional>
#include <span>
#include <string_view>

namespace planfold {

inline constexpr const char* kBuildFailed = "zup_add_parameter: Error while building message";

// `Source` is what the values are read from. A value is asked for when its turn comes, once, and its
// characters must live as long as the source.
template <class Source>
struct RequestField {
    std::uint32_t tag;
    // None leaves the field out.
    std::optional<std::string_view> (*value)(Source&);
    const char* failure; // null fails without a word
    // What else happens when this field cannot be added.
    void (*onFailure)(Source&) = nullptr;
};

template <class Source>
struct Request {
    std::string_view name;
    const char* nameFailure; // null fails without a word
    std::span<const RequestField<Source>> fields;
    const char* sendFailure;
    const char* startFailure = kBuildFailed; // null fails without a word
};

// Appends one field to the session's message; an empty value is sent as a null pointer.
inline bool AddField(Session& session, std::uint32_t tag, std::string_view value) {
    const QmxDatum datum{value.empty() ? nullptr : value.data(), static_cast<std::uint32_t>(value.size())};
    QmxError error{};
    return qmx_add_data(session.m_primeCb, tag, 1, &datum, &error) != 0;
}

// False when the control is missing or refuses.
inline bool SendBuilt(Session& session, RxControl* control) {
    std::uint64_t requestNumber = 0;
    QmxError error{};
    return control && control->SendRequest(&requestNumber, session.m_primeCb, 0, &error) != 0;
}

// Builds and sends. The first failure is shown, nothing is sent and false is returned.
template <class Source>
bool SendRequest(Pass pass, Session& session, RxControl* control, Notices& notices,
                 const Request<Source>& request, Source& source) {
    const auto fail = [&](const char* text) {
        if (text) notices.ShowMessage(pass, text);
        return false;
    };
    constexpr std::size_t mostFields = 32;
    std::array<std::optional<std::string_view>, mostFields> values;
    std::uint64_t generation = 0;
    std::size_t added = 0;
    for (std::size_t asked = 0;; ++asked) {
        // Asking the host may have let another request use the buffer: then all is added again.
        if (asked == 0 || session.Generation() != generation) {
            if (!session.StartMessage()) return fail(request.startFailure);
            generation = session.Generation();
            if (!AddField(session, tag::requestName, request.name)) return fail(request.nameFailure);
            added = 0;
        }
        for (; added < asked; ++added) {
            const RequestField<Source>& field = request.fields[added];
            if (!values[added] || AddField(session, field.tag, *values[added])) continue;
            if (field.onFailure) field.onFailure(source);
            return fail(field.failure);
        }
        if (asked == request.fields.size()) return SendBuilt(session, control) || fail(request.sendFailure);
        values.at(asked) = request.fields[asked].value(source);
        if (session.Ended()) return false;
    }
}

} // namespace planfold
