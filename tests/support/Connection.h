// The connection library as a test uses it: messages from and to lists of (tag, text), and the plug-in's own
// calls watched in their order, each of which can be made to fail.
#pragma once

#include "sdk/Qmx.h"

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

struct Field {
    std::uint32_t tag;
    std::string text;
};
// Values of a repeated field stand behind one another under the same tag.
using Fields = std::vector<Field>;

// "0=add_sip_orders;63001=nse_cm;", an absent value as "null".
std::string Dump(const Fields& fields);

// The calls as they were loaded from the library.
struct Connection {
    decltype(&qmx_open_scratch) openScratch;
    decltype(&qmx_close_scratch) closeScratch;
    decltype(&qmx_ctor_primecb) openMessage;
    decltype(&qmx_dtor_primecb) closeMessage;
    decltype(&qmx_start_msg) start;
    decltype(&qmx_add_data) add;
    decltype(&qmx_get_data) get;

    static const Connection& Loaded();
};

// An answer or a stream message of the host.
class BuiltMessage {
public:
    explicit BuiltMessage(const Fields& fields);
    BuiltMessage(const BuiltMessage&) = delete;
    BuiltMessage& operator=(const BuiltMessage&) = delete;
    ~BuiltMessage();
    void* Handle() const { return m_message; }

private:
    void* m_scratch = nullptr;
    void* m_message = nullptr;
};

// What the plug-in did with the library since it was loaded.
struct ConnectionWatch {
    int scratchOpened = 0, scratchClosed = 0, messagesOpened = 0, messagesClosed = 0;
    std::uint32_t scratchSize = 0;
    Fields building; // of the message started last

    bool failOpenScratch = false, failOpenMessage = false, failStart = false;
    std::optional<std::uint32_t> failTag;

    static ConnectionWatch& Current();
    // Begins anew with a plug-in that was just loaded.
    static void Install(HMODULE plugin);
};
