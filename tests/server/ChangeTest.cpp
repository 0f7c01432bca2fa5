// Modify, cancel, pause and resume: what each does to the record and the journal, what is answered, and what
// happens when it comes again.

#include "tests/server/ServerFixture.h"

namespace vesk {
namespace {

using Answers = std::vector<std::string>;
const std::string kNumber = "SIP2603020000001";
const std::string kDone = ". Registration No : " + kNumber;

class Counter : public UpdateListener {
public:
    explicit Counter(Server& server) : m_server(server) { m_server.AddListener(*this); }
    Counter(const Counter&) = delete;
    Counter& operator=(const Counter&) = delete;
    ~Counter() { m_server.RemoveListener(*this); }
    void OnUpdate(const Registration& registration) override {
        last = registration;
        ++updates;
    }

    int updates = 0;
    Registration last;

private:
    Server& m_server;
};

std::size_t Lines(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST(Change, RequestsInARowAreAppliedAnsweredToldAndJournaledOnceOrRefused) {
    const Fields cancel{{kTagCancelledNumber, kNumber},
                        {kTagRequestIdentifier, "cancel-1"},
                        {kTagUserText, " "},
                        {kTagCancelledBy, "USER1"},
                        {kTagOrderSource, " "}};
    const auto with = [](Fields fields, std::uint32_t tag, const char* text) {
        fields[tag] = text;
        return fields;
    };
    const auto values = [](const char* value, const char* periods) {
        return Fields{{kTagAmountOrQuantity, value}, {kTagPeriods, periods}};
    };
    // One after the other on one registration, monthly from 06-Mar-2026, 12 periods of 123450.
    const struct {
        const char* verb;
        Fields fields;
        std::string answer; // behind the name
        Fields changed;     // in the record
    } rows[] = {
        {"pause", {{kTagRegistrationNumber, ""}}, "32766=101 20008=The registration number is missing", {}},
        {"pause", {{kTagRegistrationNumber, "SIP"}}, "32766=107 20008=There is no registration SIP", {}},
        {"resume", {}, "20008=SIP resumed" + kDone, {}},
        {"pause", {}, "20008=SIP paused" + kDone, {{kTagStatus, "Paused"}}},
        {"pause", {}, "20008=SIP paused" + kDone, {}},
        {"modify",
         values("500", "6"),
         "20008=SIP modified" + kDone,
         {{kTagAmountOrQuantity, "500"}, {kTagPeriods, "6"}, {kTagEndDate, "06-Aug-2026"}}},
        {"modify", values("500", "6"), "20008=SIP modified" + kDone, {}},
        {"modify", values("0", "6"), "32766=102 20008=The amount or quantity cannot be \"0\"", {}},
        {"modify",
         values("9223372036854775808", "6"),
         "32766=102 20008=The amount or quantity cannot be \"9223372036854775808\"",
         {}},
        {"modify", values("", "6"), "32766=101 20008=The amount or quantity is missing", {}},
        {"modify", values("500", "x"), "32766=102 20008=The total period cannot be \"x\"", {}},
        {"modify", values("500", "5"), "32766=104 20008=The total period must be at least 6", {}},
        {"modify", values("500", "10001"), "32766=104 20008=The total period must not exceed 10000", {}},
        {"resume", {}, "20008=SIP resumed" + kDone, {{kTagStatus, "active"}}},
        {"cancel",
         with(cancel, kTagCancelledBy, "USER2"),
         "32766=105 20008=The user is not the one who is logged in",
         {}},
        {"cancel",
         cancel,
         "32760=" + kNumber + " 20008=SIP cancelled" + kDone,
         {{kTagStatus, "cancelled"},
          {kTagUserText, " "},
          {kTagCancelledBy, "USER1"},
          {kTagCancelledDate, "02-Mar-2026"},
          {kTagRequestIdentifier, "cancel-1"}}},
        {"cancel", cancel, "32760=" + kNumber + " 20008=SIP cancelled" + kDone, {}},
        {"cancel",
         with(cancel, kTagRequestIdentifier, "cancel-2"),
         "32766=108 20008=The registration is cancelled",
         {}},
        {"cancel",
         with(cancel, kTagRequestIdentifier, ""),
         "32766=108 20008=The registration is cancelled",
         {}},
        {"pause", {}, "32766=108 20008=The registration is cancelled", {}},
        {"resume", {}, "32766=108 20008=The registration is cancelled", {}},
        {"modify", values("600", "7"), "32766=108 20008=The registration is cancelled", {}},
    };
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    auto running = std::make_unique<RunningServer>(path);
    running->Ask(Order());
    for (const auto& row : rows) {
        const std::string name = std::string(row.verb) + "_sip_order";
        const std::string what = name + " -> " + row.answer;
        Registration expected = *running->server->Find(kNumber);
        for (const auto& [tag, text] : row.changed)
            expected.Set(tag, text);
        const std::string journal = FileText(path);
        Counter counter(*running->server);
        Fields request = row.fields;
        request.merge(Fields{{kTagRequestName, name}, {kTagRegistrationNumber, kNumber}});

        EXPECT_EQ(running->Ask(request), Answers{"32767=" + name + " " + row.answer}) << what;
        EXPECT_EQ(running->server->Find(kNumber)->Json(), expected.Json()) << what;
        const bool isChange = !row.changed.empty();
        EXPECT_EQ(counter.updates, isChange) << what;
        EXPECT_TRUE(!isChange || counter.last == expected) << what;
        EXPECT_EQ(FileText(path), journal + (isChange ? JournalLine(expected.Json()) : "")) << what;
    }

    // After a restart all is as it was, and neither request that was identified is carried out again.
    const std::string journal = FileText(path);
    const Registration before = *running->server->Find(kNumber);
    running.reset();
    running = std::make_unique<RunningServer>(path);
    EXPECT_EQ(running->server->Registrations(), std::vector{before});
    Fields again = cancel;
    again.merge(Fields{{kTagRequestName, "cancel_sip_order"}, {kTagRegistrationNumber, kNumber}});
    EXPECT_EQ(running->Ask(again),
              Answers{"32767=cancel_sip_order 32760=" + kNumber + " 20008=SIP cancelled" + kDone});
    EXPECT_EQ(running->Ask(Order()),
              Answers{"32767=add_sip_orders 20008=SIP registered" + kDone + " 54001=CL1"});
    EXPECT_EQ(FileText(path), journal);
    // The identifier of a cancellation says nothing about an order.
    running->Ask(Order({{kTagRequestIdentifier, "cancel-1"}}));
    EXPECT_EQ(Lines(FileText(path)), Lines(journal) + 1);
    running->user.loginId = "USER2";
    EXPECT_EQ(running->Ask({{kTagRequestName, "pause_sip_order"}, {kTagRegistrationNumber, kNumber}}),
              Answers{"32767=pause_sip_order 32766=105 20008=The registration is another user's"});
}

} // namespace
} // namespace vesk
