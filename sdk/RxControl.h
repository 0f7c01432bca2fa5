// The two interfaces through which requests, answers and stream messages pass.
//
// Thread:   the GUI thread, from the host's message loop; never from inside SendRequest. The host may
//           call a notifier again while a message box that an earlier call opened is still up.
// Owner:    a control is the host's, from GetKeloRxControl until DestoryKeloRxCOntrol; the notifier is the
//           plug-in's and outlives its controls.
// Lifetime: a message given to a notifier is valid during the call only.
// Failure:  0 from SendRequest or Subscribe, with the error filled.
//
// Neither has a virtual destructor: the slot order below is the boundary.
//
// Example, a window that asks for its registrations (`m_control` from GetKeloRxControl(kRxRequests, this)):
//
//     std::uint64_t number = 0;
//     QmxError error{};
//     if (!m_control->SendRequest(&number, message, 0, &error)) ShowMessage("Request Failure");
//     ...
//     void OnResponse(void*, void* message, void*) noexcept override { Read(message); }
#pragma once

#include "sdk/Qmx.h"

class RxControl {
public:
    virtual void Reserved0() = 0;
    virtual void Reserved1() = 0;
    virtual void Reserved2() = 0;
    virtual void Reserved3() = 0;
    // Sends the message built in a message handle; it is copied before the call returns. Non-zero says that it
    // was taken, not that it arrived. `requestNumber` is the host's own and matches no answer: answers are
    // matched by the request name that they echo.
    virtual int SendRequest(std::uint64_t* requestNumber, void* message, int zero, QmxError* error) = 0;
    // Streams every message that has all these values; values belong to the tags of the same position, and an
    // absent value (null, 0) matches any. `self` is the control itself; `out` receives a number of the host's
    // own. Several subscriptions of one control add up.
    virtual int Subscribe(std::uint64_t* out, const std::uint32_t* tags, const QmxDatum* values,
                          std::uint32_t count, RxControl* self, int zeroA, int zeroB, int one,
                          QmxError* error) = 0;
    virtual void Reserved6() = 0;
    virtual void Reserved7() = 0;
    virtual void Reserved8() = 0;
    virtual void Reserved9() = 0;
    virtual void Reserved10() = 0;
    virtual void Reserved11() = 0;
    virtual void Reserved12() = 0;
    virtual void Reserved13() = 0;
    virtual void Reserved14() = 0;
    // Ends the control's subscriptions; what already waits is not delivered any more. Non-zero for success.
    virtual int Stop(int zero) = 0;

protected:
    ~RxControl() = default;
};

// The first argument of GetKeloRxControl.
enum RxControlKind : int {
    kRxRequests = 0,       // requests and their answers
    kRxIdentityStream = 1, // the stream of the user's own registrations
    kRxAccountStream = 2,  // the stream of the user's or the accounts' registrations, by name
};

class CKeloRxNotifierBase {
public:
    // A stream message of a subscription; only `message` is used. It has the tags of a registration that
    // changed (Tags.h), not necessarily all of them.
    virtual void OnBroadcast(void* message, std::uint32_t value, void* context) = 0;
    // An answer to a request, one call a row; only `message` is used. tag::echoedRequest names the request,
    // tag::errorCode says that it failed.
    virtual void OnResponse(void* sender, void* message, void* context) = 0;

protected:
    ~CKeloRxNotifierBase() = default;
};
