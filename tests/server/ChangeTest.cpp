// Modify, cancel, pause and resume: what each does to the record and the journal, what is answered, and what
// happens when it comes again.

#include "tests/server/ServerFixture.h"

namespace vesk {
namespace {

using Answers = std::vector<std::string>;
const std::string kNumber = "SIP2603020000001";
const std::string kDone = ". Registration No : " + kNumber;
const std::string kEchoed = " registrationNumber=" + kNumber;

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

const Fields kCancel("cancel_sip_order|registrationNumber=" + kNumber + "|echoedNumber=" + kNumber
                     + "|orderId=cancel-1|userText= |cancelledBy=USER1|orderSource= ");

TEST(Change, RequestsInARowAreAppliedAnsweredToldAndJournaledOnceOrRefused) {
    const std::string cancelled = "echoedNumber=" + kNumber + " userText=SIP cancelled";
    // One after the other on one registration, monthly from 06-Mar-2026, 12 periods of 123450.
    const struct {
        const char* verb;
        const char* fields;  // besides those of a cancellation
        std::string answer;  // code and text of a refusal, or what is answered before the number
        const char* changed; // in the record
    } rows[] = {
        {"pause", "registrationNumber=", "101 The registration number is missing", ""},
        {"pause", "registrationNumber=SIP", "107 There is no registration SIP", ""},
        {"resume", "", "userText=SIP resumed", ""},
        {"pause", "", "userText=SIP paused", "sipStatus=Paused"},
        {"pause", "", "userText=SIP paused", ""},
        {"modify", "amountOrQuantity=500 totalPeriod=6", "userText=SIP modified",
         "amountOrQuantity=500 totalPeriod=6 endDate=06-Aug-2026"},
        {"modify", "amountOrQuantity=500 totalPeriod=6", "userText=SIP modified", ""},
        {"modify", "amountOrQuantity=0 totalPeriod=6", "102 The amount or quantity cannot be \"0\"", ""},
        {"modify", "amountOrQuantity=9223372036854775808 totalPeriod=6",
         "102 The amount or quantity cannot be \"9223372036854775808\"", ""},
        {"modify", "amountOrQuantity=1 totalPeriod=5", "104 The total period must be at least 6", ""},
        {"modify", "amountOrQuantity=1 totalPeriod=10001", "104 The total period must not exceed 10000", ""},
        {"resume", "", "userText=SIP resumed", "sipStatus=active"},
        {"cancel", "cancelledBy=USER2", "105 The user is not the one who is logged in", ""},
        {"cancel", "", cancelled, "sipStatus=cancelled|userText= |cancelledBy=USER1|cancelledDate=02-Mar-2026"},
        {"cancel", "", cancelled, ""},
        {"cancel", "orderId=cancel-2", "108 The registration is cancelled", ""},
        {"pause", "", "108 The registration is cancelled", ""},
        {"modify", "amountOrQuantity=1 totalPeriod=7", "108 The registration is cancelled", ""},
    };
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    auto running = std::make_unique<RunningServer>(path);
    running->Ask(Order());
    for (const auto& row : rows) {
        const std::string name = std::string(row.verb) + "_sip_order";
        Fields request = row.fields;
        request.merge(Fields(name));
        request.merge(Fields(kCancel));
        const bool isRefused = row.answer.starts_with('1');
        const std::string answer =
            (isRefused ? "errorCode=" + row.answer.substr(0, 3) + " userText=" + row.answer.substr(4)
                       : row.answer + kDone)
            + " registrationNumber=" + request[tag::registrationNumber];
        const std::string what = name + " -> " + answer;
        const bool isChange = *row.changed != 0;
        Registration expected = *running->server->Held().Find(kNumber);
        for (const auto& [tag, text] : Fields(row.changed))
            expected.Set(tag, text);
        expected.KeepOrdered(*running->server->Held().Find(kNumber));
        if (*row.changed && name == "cancel_sip_order") expected.changes.Set(tag::orderId, "cancel-1");
        const std::string journal = FileText(path);
        Counter counter(*running->server);

        EXPECT_EQ(running->Ask(request), Answers{"echoedRequest=" + name + " " + answer}) << what;
        EXPECT_EQ(running->server->Held().Find(kNumber)->Json(), expected.Json()) << what;
        EXPECT_EQ(counter.updates, isChange) << what;
        EXPECT_TRUE(!isChange || counter.last == expected) << what;
        EXPECT_EQ(FileText(path), isChange ? JournalOf({expected.Json()}, journal) : journal) << what;
    }

    // After a restart all is as it was, and neither request that was identified is carried out again.
    const std::string journal = FileText(path);
    const Registration before = *running->server->Held().Find(kNumber);
    running.reset();
    running = std::make_unique<RunningServer>(path);
    EXPECT_EQ(running->server->Held().All(), std::vector{before});
    EXPECT_EQ(running->Ask(kCancel), Answers{"echoedRequest=cancel_sip_order " + cancelled + kDone + kEchoed});
    EXPECT_EQ(running->Ask(Order()), Answers{"echoedRequest=add_sip_orders userText=SIP registered" + kDone
                                             + " account=CL1" + kEchoed + " orderId=id-1"});
    EXPECT_EQ(FileText(path), journal);
    // The order id of a cancellation says nothing about an order.
    running->Ask(Order("orderId=cancel-1"));
    EXPECT_EQ(running->server->Held().All().size(), 2u);
    running->user.loginId = "USER2";
    EXPECT_EQ(running->Ask(kCancel),
              Answers{"echoedRequest=cancel_sip_order errorCode=105 userText=The registration is another user's"
                      + kEchoed});
}

// Each is what a terminal sends again after a lost answer, when others were made behind it.
TEST(Change, RequestSentAgainIsAnsweredAsTheFirstTimeAndNotMadeTwice) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    auto running = std::make_unique<RunningServer>(path);
    running->Ask(Order());
    const std::pair<const char*, Fields> sent[] = {
        {"1-1", "modify_sip_order amountOrQuantity=500 totalPeriod=6 registrationNumber=" + kNumber},
        {"1-2", "modify_sip_order amountOrQuantity=700 totalPeriod=7 registrationNumber=" + kNumber},
        {"1-3", "pause_sip_order registrationNumber=" + kNumber},
        {"1-4", "resume_sip_order registrationNumber=" + kNumber},
        {"1-5", "resume_sip_order registrationNumber=" + kNumber}, // changes nothing
        {"1-6", "pause_sip_order registrationNumber=" + kNumber},
        {"1-7", "modify_sip_order amountOrQuantity=700 totalPeriod=9 registrationNumber=" + kNumber},
        {"2-1", kCancel},
    };
    // Under names and an identifier that are taken.
    std::pair<const char*, Fields> others[] = {
        {"1-1", "modify_sip_order amountOrQuantity=501 totalPeriod=6 registrationNumber=" + kNumber},
        {"1-3", "resume_sip_order registrationNumber=" + kNumber},
        {"1-1", "modify_sip_order amountOrQuantity=500 totalPeriod=6 registrationNumber=SIP2603020000002"},
        {"1-2", Order("orderId=id-3")},
        {"0-1", kCancel},
        {"", kCancel},
    };
    others[5].second[tag::userText] = "other";
    running->Ask(Order("orderId=id-2"), "0-1");
    std::vector<Answers> first;
    for (const auto& [name, request] : sent)
        first.push_back(running->Ask(request, name));
    for (const char* when : {"at once", "after a restart", "written anew"}) {
        if (when == std::string("written anew")) running->server->Upkeep().Renew();
        const std::string journal = FileText(path);
        if (when != std::string("at once")) running.reset();
        if (!running) running = std::make_unique<RunningServer>(path);
        for (std::size_t i = 0; i < std::size(sent); ++i)
            EXPECT_EQ(running->Ask(sent[i].second, sent[i].first), first[i]) << when << ' ' << sent[i].first;
        for (const auto& [name, request] : others)
            EXPECT_NE(running->Ask(request, name)[0].find("errorCode=110 "), std::string::npos)
                << when << ' ' << name;
        EXPECT_EQ(FileText(path), journal) << when;
    }
    EXPECT_EQ(running->Ask(sent[0].second, "2-2"),
              Answers{"echoedRequest=modify_sip_order errorCode=108 userText=The registration is cancelled"
                      + kEchoed});
}

TEST(Change, ARegistrationKnowsItsLatestChangesWhateverIsForgotten) {
    const TemporaryFolder folder;
    ServerClock clock = FixedClock();
    std::int64_t now = clock.now();
    clock.now = [&] { return now; };
    RunningServer running(folder.File("journal"), {}, clock);
    running.Ask(Order());
    const auto modify = [&](const char* amount, const char* name) {
        running.Ask(Fields(std::string("modify_sip_order totalPeriod=6 amountOrQuantity=") + amount
                           + " registrationNumber=" + kNumber),
                    name);
        return std::string(running.server->Held().Find(kNumber)->Text(tag::amountOrQuantity));
    };
    EXPECT_EQ(modify("500", "1-1"), "500");
    now += 8 * 86'400;
    EXPECT_EQ(modify("700", "1-2"), "700");
    EXPECT_EQ(modify("500", "1-1"), "700") << "sent again, not made again";
}

TEST(Change, RequestsAreRememberedForAWeekAndNotWithoutBound) {
    ChangeMemory memory;
    constexpr std::int64_t day = 86'400;
    for (const int at : {0, 1, 7, 8})
        memory.Remember({"USER1", std::to_string(at), {}, at * day});
    EXPECT_FALSE(memory.Find("USER1", "0"));
    EXPECT_TRUE(memory.Find("USER1", "1") && !memory.Find("USER2", "1"));
    for (int i = 10; i < 300'000; ++i)
        memory.Remember({"USER1", std::to_string(i), {}, 8 * day});
    EXPECT_TRUE(memory.Find("USER1", "200000"));
    EXPECT_EQ(memory.Size(), 200'000u);
}

} // namespace
} // namespace vesk
