// A dealer's terminal without windows, which lives until it is killed, and works up what a life before it left.
#include "host/server/net/NetServer.h"
#include "plugin/doubts/Doubts.h"
#include "tests/doubt/DealerHost.h"
#include "tests/plugin/BookDouble.h"

#include <csignal>

namespace planfold::test {
namespace {

class Dealer final : private DoubtsView, private RecordListener {
public:
    Dealer(const Round& round, Memory& memory, const vesk::ServerPlace& place, int socket)
        : m_round(round), m_memory(memory), m_socket(socket),
          m_client(std::make_unique<vesk::TcpChannel>(vesk::ServerAddress{"localhost", place.port},
                                                      place.secretsFile),
                   {round.login, round.login, ""}) {
        m_host.loginId = m_host.peerA = round.login;
        m_session.host = ResolveHostCallbacks(m_session.lookup);
        static const Round* the = &round;
        static Memory* its = &memory;
        m_session.host.pu_is_valid_account = [](InString) { return 1; };
        m_session.host.pu_get_uuid = [](OutString identifier) {
            if (!the->hasIdentifiers) return 0;
            *identifier = the->login + "-" + std::to_string(++its->identifiers);
            return 1;
        };
        m_session.m_nLoginMode = 4;
        m_session.OpenHandles(kPass, m_notices);
        m_record.AddListener(*this);
        m_basketView.clockStep = round.step;
        m_bookView.reason = "doubt";
        AnswerFor(m_basketView), AnswerFor(m_entryView), AnswerFor(m_bookView);
        m_entryView.controls[IDC_SERIES].items = {"EQ"};
        m_entryView.controls[IDC_SYMBOL].items = {"ARBORTEX"};
    }

    void Live() {
        m_book.Open(Now());
        m_basketView.now = Now();
        m_basket.Initialise({});
        m_entry.Initialise(Now(), {});
        Pump(20'000); // as long as it takes: he waits for the frequencies
        if (++m_memory.lives == 1) {
            if (m_round.wish == Wish::changes) PlaceFile();
            m_isArmed = true;
            DoAll();
        }
        m_isArmed = true;
        WorkUp();
        Tell();
    }

private:
    LocalDateTime Now() const {
        const std::int64_t midnight = time(nullptr) / kSecondsPerDay * kSecondsPerDay;
        return ToLocal(midnight - (m_round.overMidnight ? 20 : kSecondsPerDay / 2) + m_memory.skew);
    }
    // What is like another is a twin, or was placed.
    template <class View>
    void AnswerFor(View& view) {
        view.duringQuestion = [this, &view] {
            const std::string& question = view.questions.back();
            const bool isLike = question.find(" like ") != question.npos;
            view.yes = question.starts_with("The record") ? m_round.agrees : !isLike || m_round.isTwin;
            if constexpr (requires { view.choice; }) view.choice = view.yes ? Choice::yes : Choice::no;
            AnswerFor(view);
        };
    }
    void Say(std::string line) {
        line += '\n';
        if (write(m_socket, line.data(), line.size()) < 0) _exit(3);
    }
    void AskFor(const std::string& what) {
        char byte = 0;
        Say("!" + what);
        if (read(m_socket, &byte, 1) != 1) _exit(3);
    }

    void Comes(Step step) {
        if (!m_isArmed) return;
        const Fault& fault = *m_round.fault;
        if (m_round.dies && !m_memory.hasDied && step == m_round.diesAt
            && ++m_memory.cameToDie == m_round.diesAfter) {
            m_memory.hasDied = true;
            kill(getpid(), SIGKILL);
        }
        if (m_memory.isPlayed || step != fault.step || ++m_memory.came != m_round.at) return;
        m_memory.isPlayed = true;
        m_isWell = false;
        switch (fault.play) {
        case Play::leave:
            m_record.OnSessionEnd();
            [[fallthrough]];
        case Play::kill:
            kill(getpid(), SIGKILL);
            break;
        case Play::record:
            m_files.refuses = true;
            break;
        case Play::full:
            m_files.isFull = true;
            break;
        case Play::restart:
            return AskFor("restart");
        case Play::down:
            return AskFor("down");
        case Play::server:
            return AskFor("play");
        }
    }

    // What is late is not waited for, nor for long what may never come; a busy machine gets all the time it
    // needs once nothing is wrong any more.
    void Pump() { Pump(m_memory.lateUntilMs ? 4 : m_isWell ? 1000 : 60); }
    void Pump(std::int64_t longestMs) {
        const std::int64_t end = vesk::SteadyMs() + longestMs;
        do {
            // His clock is fast: the pauses before another connection pass quickly.
            if (m_client.Pump(vesk::SteadyMs() * 10) == 0) usleep(200);
        } while ((m_client.Waiting() > 0 || m_client.State() != vesk::LinkState::connected)
                 && vesk::SteadyMs() < end);
    }
    void After(std::int64_t seconds) {
        m_memory.skew += seconds;
        m_basketView.now = Now();
        m_doubts.OnTime();
        Pump();
    }

    void DoAll() {
        if (m_round.wish == Wish::basket) PlaceFile();
        if (m_round.wish == Wish::form)
            for (int i = 0; i < m_round.count; ++i)
                Submit(i);
        if (m_round.wish == Wish::changes)
            for (int i = 0; i < m_round.count; ++i)
                Change(i);
        Pump();
    }

    void Load() {
        std::string text;
        for (int i = 0; i < m_round.count; ++i)
            text += m_round.Account(i) + ",nse_cm,EQ,ARBORTEX,1013,ARBORTEX-EQ,CNC,"
                    + std::to_string(m_round.Rupees(i) * 100) + ",7,monthly,,05/Mar/" + std::to_string(m_year)
                    + ",12,MKT,B,,,,value,\n";
        m_basketView.files["basket.csv"] = text;
        m_basket.Runs().Load();
        Run();
    }
    void PlaceFile() {
        Load();
        Place(BasketRuns::Placed::all);
    }
    void Place(BasketRuns::Placed which) {
        m_basket.Runs().Place(which);
        Run();
        Pump();
    }
    void Run() {
        while (m_basket.Runs().IsUnderWay()) {
            if (m_round.step > 0) m_client.Pump(vesk::SteadyMs() * 10);
            m_basket.Runs().Continue();
        }
    }
    // Answers that do not come are waited for so long, and no longer.
    void Await() {
        Pump();
        for (int i = 0; i < 600 && m_book.Runs().IsUnderWay(); ++i)
            m_book.Runs().Continue();
    }
    void Submit(int order) {
        m_entryView.SelectText(IDC_FREQUENCY, "monthly");
        m_entryView.SetText(IDC_CLIENT_SEARCH, m_round.Account(order));
        m_entryView.SetText(IDC_VALUE, std::to_string(m_round.Rupees(order)));
        m_entryView.SetText(IDC_PERIOD, "12");
        m_entryView.SetDate(IDC_START_DATE, {m_year, 3, 5});
        m_entry.Submit(Now());
        Pump();
    }

    // The registration of the order, once it is in the book.
    RecordId RowOf(int order) const {
        for (RecordId row = 0; row < m_book.Records().Size(); ++row)
            if (m_book.Records()[row].Text(OrderField::account) == m_round.Account(order)) return row;
        return kNoRecord;
    }
    bool IsChanged(int order) const {
        const RecordId row = RowOf(order);
        if (row == kNoRecord) return false;
        const sOrderinfo& record = m_book.Records()[row];
        const std::string_view status = record.Text(OrderField::sipStatus);
        if (order % 3 == 0) return record.Text(OrderField::amount) == std::to_string(9000 + order) + ".00";
        return order % 3 == 1 ? status == kPausedStatus : IsCancelled(status);
    }
    void Change(int order) {
        const RecordId row = RowOf(order);
        if (row == kNoRecord || IsChanged(order)) return;
        m_bookView.registered.selected = {row};
        if (order % 3 == 1) m_round.count % 2 ? m_book.Actions().Pause() : m_book.Actions().PauseSelected();
        if (order % 3 == 2) m_book.Actions().Cancel();
        if (order % 3 != 0) return Await();
        const sOrderinfo& record = m_book.Records()[row];
        SipRegistration registration;
        registration.number = record.Number();
        registration.exchange = "NSE";
        registration.tradingSymbol = "ARBORTEX-EQ";
        registration.frequency = "monthly";
        registration.startDate = "05-Mar-" + std::to_string(m_year);
        registration.investType = "value";
        registration.account = m_round.Account(order);
        m_entryView.closed = false;
        m_entry.FillForModify(registration);
        m_entryView.SetText(IDC_VALUE, std::to_string(9000 + order));
        m_entryView.SetText(IDC_PERIOD, "18");
        m_entry.Submit(Now());
        Pump();
    }

    // As a dealer does after a fault, until nothing is left to do.
    void WorkUp() {
        constexpr int mostTries = 6;
        m_doubts.OnPick();
        m_basket.Runs().OfferUnsent();
        Run();
        for (int tries = 0; tries < mostTries; ++tries) {
            After(OrderRecord::kPatience + 1);
            if (m_round.fault->step != Step::compare || tries > 0) Heal();
            Comes(Step::compare);
            Compare();
            Heal();
            Look();
            if (IsAllDone() && m_memory.lateUntilMs == 0) return;
            if (IsAllDone()) WaitForLate();
            Place(BasketRuns::Placed::unsent);
            Place(BasketRuns::Placed::refused);
            PlaceMissing();
            Pump();
        }
        Say("w it does not come to an end");
    }
    void Heal() {
        m_files.refuses = m_files.isFull = false;
        AskFor("heal");
        for (int i = 0; i < 500 && m_client.State() != vesk::LinkState::connected; ++i)
            Pump(5);
        m_isWell = true;
    }
    void Compare() {
        m_isCompared = false;
        m_record.OnTime();
        if (m_record.Ledger().Count(OrderState::inDoubt) == 0) return;
        // Asked at the start already, or now by himself.
        m_doubts.Compare();
        for (int seconds = 0; seconds < 400 && !m_isCompared; ++seconds)
            After(1);
        if (!m_isCompared) Say("w a comparison does not end");
    }
    void WaitForLate() {
        while (vesk::SteadyMs() < m_memory.lateUntilMs)
            Pump(m_memory.lateUntilMs - vesk::SteadyMs()), usleep(1000);
        m_memory.lateUntilMs = 0;
    }
    // At the book, and at what he is asked.
    void Look() {
        m_book.Refresh();
        Pump();
        for (int i = 0; i < 3; ++i)
            After(1);
    }

    std::size_t Known(int order, bool alsoOpen) {
        std::size_t known = 0;
        const std::string value = std::to_string(m_round.Rupees(order) * 100);
        for (const RecordedOrder& sent : m_record.Ledger().Orders())
            known += !sent.ChangesRegistration() && sent.Text(RecordField::account) == m_round.Account(order)
                     && (sent.State() == OrderState::done || (alsoOpen && IsOpen(sent.State())));
        // What he sent without a record, or yesterday, he looks up in the book.
        if (m_round.agrees || m_round.overMidnight)
            known = std::max<std::size_t>(known, RowOf(order) != kNoRecord);
        for (const RecordId row : m_basketView.list.rows)
            known += alsoOpen && !m_basket.Rows().IsSent(row)
                     && m_basket.Rows()[row].Text(BasketField::account) == m_round.Account(order);
        return known;
    }
    std::size_t Wanted(int order) const { return m_round.isTwin && (order | 1) < m_round.count ? 2 : 1; }
    bool IsAllDone() {
        const OrderLedger& ledger = m_record.Ledger();
        bool isDone = ledger.Count(OrderState::sent) + ledger.Count(OrderState::inDoubt) == 0;
        for (int i = 0; i < m_round.count; ++i)
            isDone = isDone && Known(i, false) >= Wanted(i) && (m_round.wish != Wish::changes || IsChanged(i));
        return isDone;
    }
    void PlaceMissing() {
        bool hasMissing = false;
        for (int i = 0; i < m_round.count; ++i) {
            if (m_round.wish == Wish::changes) Change(i);
            const bool isMissing = m_round.wish != Wish::changes && Known(i, true) < Wanted(i);
            if (isMissing && m_round.wish == Wish::form) Submit(i);
            hasMissing = hasMissing || isMissing;
        }
        if (!hasMissing || m_round.wish != Wish::basket) return;
        Load();
        Place(BasketRuns::Placed::unsent);
    }

    // What he sees in the end.
    void Tell() {
        const OrderLedger& ledger = m_record.Ledger();
        m_record.OnSessionEnd();
        DiskFiles files([](Step) {});
        OrderRecord again(files, [this] { return Now(); });
        for (std::size_t i = 0; i < ledger.Orders().size(); ++i) {
            const RecordedOrder& order = ledger[static_cast<OrderPlace>(i)];
            OnOrder(static_cast<OrderPlace>(i));
            const OrderPlace read = again.Ledger().Find(order.Texts());
            if (m_files.hasFailed || !m_round.hasIdentifiers || m_round.overMidnight
                || ledger.Find(order.Texts()) != i)
                continue;
            if (read == kNoOrder || again.Ledger()[read].State() != order.State())
                Say("w the record has it otherwise: " + std::string(order.Text(RecordField::account)));
        }
        again.OnTime();
        if (again.Ledger().Count(OrderState::sent) + again.Ledger().Count(OrderState::inDoubt) > 0)
            Say("w the record still has an order in doubt");
        for (const RecordId row : m_basketView.list.rows)
            if (const OrderPlace place = m_basket.Rows().OrderOf(row);
                place != kNoOrder && m_basket.Rows().State(row) != RowStateOf(ledger[place].State())
                && m_basket.Rows().State(row) != RowState::notPlaced)
                Say("w a row shows another state: " + m_basket.Outcome().StateText(row));
    }

    void OnOrder(OrderPlace place) override {
        constexpr const char* names[] = {"sent", "done", "refused", "notSent", "inDoubt", "absent"};
        const RecordedOrder& order = m_record.Ledger()[place];
        const auto word = [&](RecordField field) {
            const std::string text(order.Text(field));
            return " " + (text.empty() ? "-" : text);
        };
        const std::string name = names[static_cast<std::size_t>(order.State())];
        const std::string number = word(RecordField::registration);
        if (order.ChangesRegistration()) return Say("c " + name + number + " " + std::string(order.SentText()));
        Say("o " + name + word(RecordField::orderId) + number + word(RecordField::account));
    }
    void OnRegisteredTwice(OrderPlace place, std::string_view second) override {
        Say("t " + std::string(second) + " "
            + std::string(m_record.Ledger()[place].Text(RecordField::account)));
    }

    void ShowMessage(Pass, std::string_view text) override { Hear(text); }
    bool MayAsk() override { return true; }
    Choice Choose(Pass, std::string_view) override { return Choice::yes; }
    bool Ask(Pass, std::string_view question) override {
        Hear(question);
        return true;
    }
    void ShowOrdersOfDay(Pass) override {}
    std::size_t TakeBack(Pass pass, std::span<const OrderPlace> orders) override {
        return m_basket.Coming().TakeBack(pass, orders);
    }
    void Hear(std::string_view text) {
        m_isCompared = m_isCompared || text.starts_with("Compared") || text.starts_with("No order");
    }

    const Round& m_round;
    Memory& m_memory;
    const int m_socket;
    const int m_year = ToLocal(time(nullptr)).year + 1; // in which all begin
    const Gate m_gate = [this](Step step) { Comes(step); };
    bool m_isArmed = false, m_isCompared = false;
    bool m_isWell = false; // nothing is played, and the connection stands
    FakeHost m_host;
    RecordedNotices m_notices;
    DiskFiles m_files{m_gate};
    OrderRecord m_record{m_files, [this] { return Now(); }};
    Session m_session{m_host.Lookup(), m_host.IdentityStrings(), m_host.strings, m_record};
    vesk::RxClient m_client;
    BasketScreen m_basketView{m_gate};
    OrderEntryDouble m_entryView;
    BookDouble m_bookView;
    Line m_basketLine{m_client, kRxRequests, m_gate, [this](void* message) { m_basket.OnResponse(message); }};
    Line m_entryLine{m_client, kRxRequests, m_gate, [this](void* message) { m_entry.OnResponse(message); }};
    Line m_doubtsLine{m_client, kRxRequests, m_gate, [this](void* message) { m_doubts.OnResponse(message); }};
    Line m_bookLine{m_client, kRxRequests, m_gate, [this](void* message) { m_book.OnResponse(message); }};
    Line m_stream{
        m_client, kRxIdentityStream, m_gate, {}, [this](void* message) { m_book.OnBroadcast(message); }};
    Basket m_basket{m_session, m_basketView, &m_basketLine};
    OrderEntry m_entry{m_session, m_entryView, &m_entryLine};
    OrderBook m_book{m_session, m_bookView, {&m_bookLine, &m_stream, &m_stream}};
    Doubts m_doubts{m_session, *this, [this] { return &m_doubtsLine; }};
};

} // namespace

void LiveAsDealer(const Round& round, Memory& memory, const vesk::ServerPlace& place, int socket) {
    Dealer dealer(round, memory, place, socket);
    dealer.Live();
    _exit(0);
}

} // namespace planfold::test
