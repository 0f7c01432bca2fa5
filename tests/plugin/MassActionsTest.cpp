// Thousands of rows of the book at once, over a line that can be cut to a server that refuses, is silent and
// journals: what the dealer is told in numbers is what the server has done.

#include "host/server/net/NetServer.h"
#include "plugin/base/Numbers.h"
#include "tests/plugin/BookDouble.h"
#include "tests/plugin/FlowStage.h"
#include "tests/support/ModelList.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

constexpr std::size_t kOwn = 9000, kTheirs = 1000;

class MassActionsTest : public ::testing::Test, protected Stage {
protected:
    MassActionsTest() {
        EXPECT_EQ(net.Listen(0), "");
        client = std::make_unique<vesk::RxClient>(
            std::make_unique<vesk::TcpChannel>(vesk::ServerAddress{"localhost", net.Port()}, ""), own);
        book = std::make_unique<OrderBook>(session, view,
                                           BookControls{client->Get(kRxRequests, &line),
                                                        client->Get(kRxIdentityStream, &line),
                                                        client->Get(kRxAccountStream, &line)});
        line.part = book.get();
        view.registered.Show(book->Records());
        view.cancelled.Show(book->Records());
        session.m_nLoginMode = 1;
        Enter(own, kOwn);
        book->Open(kNow);
        Pump();
        for (std::size_t i = 0; i < kTheirs; ++i)
            Handle(colleague, OrderOf(colleague, "their-" + std::to_string(i)));
        Pump();
        host.uuid = "";
        session.host.pu_get_uuid = nullptr;
        EXPECT_EQ(view.registered.Model().RowCount(), kOwn + kTheirs);
    }
    static Fields OrderOf(const vesk::UserIdentity& user, const std::string& orderId) {
        Fields order = Order("loginId=" + user.loginId + " peerIdA=BROKER peerIdB=BRANCH account=C001 orderId="
                             + orderId + " startDate=" + std::to_string(ToSeconds(kNow) + 5 * kSecondsPerDay));
        order.push_back({tag::orderSource, {"TWS"}});
        return order;
    }
    void Enter(const vesk::UserIdentity& user, std::size_t count) {
        Handle(user, OrderOf(user, "own"));
        const vesk::Registration first = server.Held().All().back();
        std::vector<vesk::Registration> batch;
        for (std::size_t i = 1; i < count; ++i) {
            batch.push_back(first);
            batch.back().Set(tag::registrationNumber, "SIP" + std::to_string(2701100100000 + i));
        }
        EXPECT_EQ(server.EnterMadeUp(std::move(batch)), "");
    }
    void Handle(const vesk::UserIdentity& user, const Fields& fields) {
        server.Handle(Received(fields).Message(), user);
    }
    void Turn() {
        net.Turn(0);
        client->Pump(now += 20);
    }
    // Until nothing comes any more.
    void Pump() {
        for (int quiet = 0; quiet < 20; ++quiet) {
            const auto before = view.boxes.size() + host.log.size() + book->Records().Size();
            Turn();
            if (client->Waiting() > 0 && !IsMute()) quiet = 0;
            if (before != view.boxes.size() + host.log.size() + book->Records().Size()) quiet = 0;
        }
    }
    bool IsMute() const {
        const vesk::RequestFault& fault = server.Config().FaultFor(request);
        return fault.silent || fault.ignored || hasBeenMute;
    }
    void SelectAll() { view.registered.Model().SelectRows(0, view.registered.Model().ShownCount(), true); }
    // A portion as the progress window's timer does it, and what the line brings meanwhile.
    void Run(int portions) {
        while (book->Runs().IsUnderWay() && portions-- > 0) {
            book->Runs().Continue();
            for (int i = 0; i < 4; ++i)
                Turn();
        }
    }
    // Of those that the dealer sees.
    std::size_t HasStatus(const char* login, std::string_view status) const {
        std::size_t count = 0;
        for (const vesk::Registration& registration : server.Held().All())
            count += registration.Text(tag::loginId) == login && registration.Text(tag::sipStatus) == status;
        return count;
    }
    // What the journal alone tells of both users' registrations, by their numbers.
    std::map<std::string, std::size_t> Journalled() const {
        std::map<std::string, std::string> last;
        std::istringstream lines(vesk::FileText(folder.File("journal")));
        const auto valueOf = [](const std::string& text, const std::string& name) {
            const std::size_t start = text.find("\"" + name + "\":\"") + name.size() + 4;
            return text.substr(start, text.find('"', start) - start);
        };
        for (std::string text; std::getline(lines, text);)
            if (text.find("{\"registration\"") != text.npos)
                last[valueOf(text, std::to_string(tag::registrationNumber))] =
                    valueOf(text, std::to_string(tag::sipStatus));
        std::map<std::string, std::size_t> counts;
        for (const auto& [number, status] : last)
            ++counts[status];
        return counts;
    }
    struct Told {
        std::size_t sent = 0, of = 0, confirmed = 0, refused = 0, inDoubt = 0, notSent = 0;
    };
    // The one summary.
    Told Summary() {
        EXPECT_EQ(view.boxes.size(), 1u);
        const std::string text = view.boxes.empty() ? "" : view.boxes.back();
        const auto numberBehind = [&](const std::string& words) -> std::size_t {
            const std::size_t at = text.find(words);
            return at == text.npos ? 0
                                   : static_cast<std::size_t>(LeadingInteger(text.substr(at + words.size())));
        };
        const char* noun = request == kCancelSipOrder  ? "Cancel: "
                           : request == kPauseSipOrder ? "Pause: "
                                                       : "Resume: ";
        const std::string sent = noun + std::to_string(numberBehind(noun));
        Told told{numberBehind(noun),       numberBehind(sent + " of "), numberBehind("confirmed "),
                  numberBehind("refused "), numberBehind("In doubt: "),  numberBehind("Not sent: ")};
        EXPECT_EQ(told.sent, told.confirmed + told.refused + told.inDoubt) << text;
        EXPECT_EQ(told.of, told.sent + told.notSent) << text;
        view.boxes.clear();
        return told;
    }
    // Events of the last run.
    std::size_t Recorded(std::string_view event) const {
        return static_cast<std::size_t>(std::ranges::count_if(
            host.recordFiles.Events(), [&](const std::string& text) { return text.starts_with(event); }));
    }
    void WaitInVain() {
        host.recordTime = ToLocal(ToSeconds(host.recordTime) + OrderRecord::kPatience);
        session.record.OnTime();
        Run(1);
    }

    const vesk::UserIdentity own{"DEALER1", "BROKER", "BRANCH"}, colleague{"DEALER2", "BROKER", "BRANCH"};
    const vesk::TemporaryFolder folder;
    vesk::JournalOpening opening = vesk::Journal::Open(folder.File("journal"));
    vesk::Server server{{}, *opening.journal, opening.records, FlowClock()};
    vesk::ServerCommands commands{server, {}};
    vesk::NetServer net{server, commands, [](const std::string&) {}};
    std::int64_t now = 0;
    BookDoubleOf<ModelList> view;
    Line<OrderBook> line;
    std::unique_ptr<vesk::RxClient> client;
    std::unique_ptr<OrderBook> book;
    std::string_view request;
    bool hasBeenMute = false;
};

TEST_F(MassActionsTest, TheSummarysNumbersAreTheServers) {
    struct Row {
        const char* name;
        RunKind kind;
        vesk::RequestFault fault; // behind the first portions
        bool stops;
        bool isHandled; // what nobody answered
    };
    const Row rows[] = {
        {"stopped", RunKind::pause, {}, true, true},
        {"silent and stopped", RunKind::pause, {.silent = true}, true, true},
        {"resumed", RunKind::resume, {}, false, true},
        {"ignored and stopped", RunKind::pause, {.ignored = true}, true, false},
        {"refused and stopped", RunKind::pause, {.errorCode = "55"}, true, false},
        {"a cut line", RunKind::pause, {.disconnects = 3}, false, true},
        {"cancelled over a line that is cut before", RunKind::cancel, {.disconnectsBefore = 3}, false, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const bool cancels = row.kind == RunKind::cancel;
        request = cancels ? kCancelSipOrder : row.kind == RunKind::pause ? kPauseSipOrder : kResumeSipOrder;
        const char* status = cancels ? "cancelled" : row.kind == RunKind::pause ? "Paused" : "active";
        const std::size_t before = HasStatus("DEALER1", status);
        SelectAll();
        host.recordFiles.text.clear();
        if (cancels)
            book->Actions().Cancel();
        else if (row.kind == RunKind::pause)
            book->Actions().PauseSelected();
        else
            book->Actions().ResumeSelected();
        ASSERT_TRUE(book->Runs().IsUnderWay());
        Run(5);
        server.Config().faults[std::string(request)] = row.fault;
        hasBeenMute = row.fault.silent || row.fault.ignored;
        Run(5);
        if (row.stops) book->Runs().Stop();
        Run(400);
        Pump();
        Run(1);
        if (book->Runs().IsUnderWay()) WaitInVain();
        ASSERT_FALSE(book->Runs().IsUnderWay());
        const Told told = Summary();
        EXPECT_EQ(told.of, cancels ? kOwn + kTheirs : kOwn - before);
        EXPECT_EQ(told.notSent == 0, !row.stops);
        EXPECT_EQ(told.inDoubt > 0, row.fault.silent || row.fault.ignored);
        EXPECT_EQ(told.refused > 0, row.fault.errorCode.has_value() || cancels);
        EXPECT_TRUE(!cancels || told.refused == kTheirs);
        const std::size_t done = HasStatus("DEALER1", status) - before;
        EXPECT_EQ(done, told.confirmed + (row.isHandled ? told.inDoubt : 0));
        EXPECT_EQ(HasStatus("DEALER2", "active"), kTheirs);
        server.Config().faults.clear();
        EXPECT_EQ(Recorded("in_doubt"), told.inDoubt);
        EXPECT_EQ(Recorded("refused"), told.refused);
        EXPECT_EQ(Recorded(cancels                      ? "cancelled"
                           : row.kind == RunKind::pause ? "paused"
                                                        : "resumed"),
                  told.confirmed);
    }
    EXPECT_EQ(Journalled(), (std::map<std::string, std::size_t>{{"active", kTheirs}, {"cancelled", kOwn}}));
    EXPECT_EQ(view.registered.Model().RowCount(), kTheirs);
    EXPECT_EQ(view.cancelled.Model().RowCount(), kOwn);
}

} // namespace
} // namespace planfold::test
