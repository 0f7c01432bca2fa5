// Modify, cancel, pause and resume: what each does to the record and the journal, what is answered, and what
// happens when it comes again.

#include "tests/server/ServerFixture.h"

namespace vesk {
namespace {

using Answers = std::vector<std::string>;
const std::string kNumber = "SIP2603020000001";
const std::string kDone = ". Registration No : " + kNumber;
const std::string kEchoed = " 64804=" + kNumber;

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

const Fields kCancel = FieldsOf("0=cancel_sip_order|64804=" + kNumber + "|32760=" + kNumber
                                + "|54158=cancel-1|20008= |49281=USER1|64756= ");

TEST(Change, RequestsInARowAreAppliedAnsweredToldAndJournaledOnceOrRefused) {
    const std::string cancelled = "32760=" + kNumber + " 20008=SIP cancelled";
    // One after the other on one registration, monthly from 06-Mar-2026, 12 periods of 123450.
    const struct {
        const char* verb;
        const char* fields;  // besides those of a cancellation
        std::string answer;  // behind the name; a success ends with the number, and all echo it
        const char* changed; // in the record
    } rows[] = {
        {"pause", "64804=", "32766=101 20008=The registration number is missing", ""},
        {"pause", "64804=SIP", "32766=107 20008=There is no registration SIP", ""},
        {"resume", "", "20008=SIP resumed", ""},
        {"pause", "", "20008=SIP paused", "10303=Paused"},
        {"pause", "", "20008=SIP paused", ""},
        {"modify", "53063=500|63415=6", "20008=SIP modified", "53063=500|63415=6|64987=06-Aug-2026"},
        {"modify", "53063=500|63415=6", "20008=SIP modified", ""},
        {"modify", "53063=0|63415=6", "32766=102 20008=The amount or quantity cannot be \"0\"", ""},
        {"modify", "53063=9223372036854775808|63415=6",
         "32766=102 20008=The amount or quantity cannot be \"9223372036854775808\"", ""},
        {"modify", "63415=6", "32766=101 20008=The amount or quantity is missing", ""},
        {"modify", "53063=1|63415=x", "32766=102 20008=The total period cannot be \"x\"", ""},
        {"modify", "53063=1|63415=5", "32766=104 20008=The total period must be at least 6", ""},
        {"modify", "53063=1|63415=10001", "32766=104 20008=The total period must not exceed 10000", ""},
        {"resume", "", "20008=SIP resumed", "10303=active"},
        {"cancel", "49281=USER2", "32766=105 20008=The user is not the one who is logged in", ""},
        {"cancel", "", cancelled, "10303=cancelled|20008= |49281=USER1|10320=02-Mar-2026"},
        {"cancel", "", cancelled, ""},
        {"cancel", "54158=cancel-2", "32766=108 20008=The registration is cancelled", ""},
        {"cancel", "54158=", "32766=108 20008=The registration is cancelled", ""},
        {"pause", "", "32766=108 20008=The registration is cancelled", ""},
        {"resume", "", "32766=108 20008=The registration is cancelled", ""},
        {"modify", "53063=1|63415=7", "32766=108 20008=The registration is cancelled", ""},
    };
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    auto running = std::make_unique<RunningServer>(path);
    running->Ask(Order());
    for (const auto& row : rows) {
        const std::string name = std::string(row.verb) + "_sip_order";
        Fields request = FieldsOf(row.fields);
        request.merge(Fields{{tag::requestName, name}});
        request.merge(Fields(kCancel));
        const std::string answer = row.answer + (row.answer.starts_with("32766") ? "" : kDone)
                                   + " 64804=" + request[tag::registrationNumber];
        const std::string what = name + " -> " + answer;
        const bool isChange = *row.changed != 0;
        Registration expected = *running->server->Find(kNumber);
        for (const auto& [tag, text] : FieldsOf(row.changed))
            expected.Set(tag, text);
        expected.KeepOrdered(*running->server->Find(kNumber));
        if (*row.changed && name == "cancel_sip_order") expected.changes.Set(tag::orderId, "cancel-1");
        const std::string journal = FileText(path);
        Counter counter(*running->server);

        EXPECT_EQ(running->Ask(request), Answers{"32767=" + name + " " + answer}) << what;
        EXPECT_EQ(running->server->Find(kNumber)->Json(), expected.Json()) << what;
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
    EXPECT_EQ(running->Ask(kCancel), Answers{"32767=cancel_sip_order " + cancelled + kDone + kEchoed});
    EXPECT_EQ(running->Ask(Order()), Answers{"32767=add_sip_orders 20008=SIP registered" + kDone + " 54001=CL1"
                                             + kEchoed + " 54158=id-1"});
    EXPECT_EQ(FileText(path), journal);
    // The order id of a cancellation says nothing about an order.
    running->Ask(Order({{tag::orderId, "cancel-1"}}));
    EXPECT_EQ(running->server->Registrations().size(), 2u);
    running->user.loginId = "USER2";
    EXPECT_EQ(running->Ask(kCancel),
              Answers{"32767=cancel_sip_order 32766=105 20008=The registration is another user's" + kEchoed});
}

// Each is what a terminal sends again after a lost answer, when others were made behind it.
TEST(Change, RequestSentAgainIsAnsweredAsTheFirstTimeAndNotMadeTwice) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    auto running = std::make_unique<RunningServer>(path);
    running->Ask(Order());
    const std::pair<const char*, Fields> sent[] = {
        {"1-1", FieldsOf("0=modify_sip_order|53063=500|63415=6|64804=" + kNumber)},
        {"1-2", FieldsOf("0=modify_sip_order|53063=700|63415=7|64804=" + kNumber)},
        {"1-3", FieldsOf("0=pause_sip_order|64804=" + kNumber)},
        {"2-1", kCancel},
    };
    std::vector<Answers> first;
    for (const auto& [name, request] : sent)
        first.push_back(running->Ask(request, name));
    const std::string journal = FileText(path);
    for (const bool hasRestarted : {false, true}) {
        if (hasRestarted) running.reset();
        if (hasRestarted) running = std::make_unique<RunningServer>(path);
        for (std::size_t i = 0; i < std::size(sent); ++i)
            EXPECT_EQ(running->Ask(sent[i].second, sent[i].first), first[i]) << sent[i].first;
        EXPECT_EQ(FileText(path), journal);
    }
    EXPECT_EQ(running->Ask(sent[0].second, "2-2"),
              Answers{"32767=modify_sip_order 32766=108 20008=The registration is cancelled" + kEchoed});
}

} // namespace
} // namespace vesk
