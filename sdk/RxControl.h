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
#pragma once

#include "sdk/Qmx.h"

class RxControl {
public:
    virtual void Reserved0() = 0;
    virtual void Reserved1() = 0;
    virtual void Reserved2() = 0;
    virtual void Reserved3() = 0;
    // Sends the message built in a message handle; it is copied before the call returns.
    virtual int SendRequest(std::uint64_t* requestNumber, void* message, int zero, QmxError* error) = 0;
    // Values belong to the tags of the same position. `self` is the control itself.
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
    // Ends the control's subscriptions.
    virtual int Stop(int zero) = 0;

protected:
    ~RxControl() = default;
};

// The first argument of GetKeloRxControl.
enum RxControlKind : int {
    kRxRequests = 0,
    kRxIdentityStream = 1,
    kRxAccountStream = 2,
};

class CKeloRxNotifierBase {
public:
    // A stream message of a subscription.
    virtual void OnBroadcast(void* message, std::uint32_t value, void* context) = 0;
    // The answer to a request; only `message` is used.
    virtual void OnResponse(void* sender, void* message, void* context) = 0;

protected:
    ~CKeloRxNotifierBase() = default;
};
