// Instalments by the server's clock: their days worked out by hand, and random plans, closed days, changes and
// crashes beside a model that goes from day to day.

#include "host/server/schedule/Schedule.h"
#include "tests/server/ServerFixture.h"

#include <random>

namespace vesk {
namespace {

using Date = std::chrono::year_month_day;
using std::chrono::days;
using std::chrono::sys_days;

ServerConfig Config(const std::string& nonTrading = {}) {
    ServerConfig config;
    for (Frequency& frequency : config.frequencies)
        frequency.minimumPeriods = 1;
    std::istringstream dates(nonTrading);
    for (std::string date; dates >> date;)
        config.nonTrading.push_back(*ParseRecordDate(date));
    return config;
}

// The days of its orders.
std::string ExecutedOn(RunningServer& running, std::string_view number) {
    std::string told;
    for (const std::string& row :
         running.Finish(running.Begin("qry_eq_sip_orders registrationNumber=" + std::string(number))))
        told.append(qmx::Text(qmx::MessageReader(row).Handle(), tag::placementTime).substr(0, 11)) += ' ';
    told.pop_back();
    return told;
}

Fields Plan(sys_days start, const std::string& frequency, int periods) {
    return Order("startDate=" + std::to_string(start.time_since_epoch() / std::chrono::seconds(1))
                 + " frequency=" + frequency + " totalPeriod=" + std::to_string(periods) + " orderId=");
}

TEST(Instalments, AreExecutedOnTheDaysWorkedOutByHand) {
    const struct {
        const char* start;
        const char* frequency;
        int periods;
        const char* nonTrading;
        const char* events; // "date request;": on that day, in order; "date!request;": before that is executed
        const char* end;
        const char* executed;
    } rows[] = {
        {"29-Feb-2028", "yearly", 5, "", "", "29-Feb-2032",
         "29-Feb-2028 28-Feb-2029 28-Feb-2030 28-Feb-2031 01-Mar-2032 "},
        {"31-Jan-2027", "monthly", 5, "", "", "31-May-2027",
         "01-Feb-2027 01-Mar-2027 31-Mar-2027 30-Apr-2027 31-May-2027 "},
        {"30-Apr-2027", "daily", 4, "03-May-2027", "", "03-May-2027",
         "30-Apr-2027 04-May-2027 05-May-2027 06-May-2027 "},
        {"28-Nov-2026", "monthly", 3, "",
         "01-Nov-2026 calendar_add_restricted_dates restrictedYear=2026 startDate=25 restrictedTo=31;"
         "01-Nov-2026 calendar_add_restricted_dates restrictedYear=2027 startDate=1 restrictedTo=5;",
         "28-Jan-2027", "01-Dec-2026 06-Jan-2027 28-Jan-2027 "},
        // Closed until the 20th, which is lifted on the 15th: the days past do not come back.
        {"10-Mar-2027", "weekly", 2, "",
         "01-Mar-2027 calendar_add_restricted_dates restrictedYear=2027 startDate=1 restrictedTo=20;"
         "15-Mar-2027 calendar_add_restricted_dates restrictedYear=2027 startDate=16 restrictedTo=16;",
         "17-Mar-2027", "15-Mar-2027 17-Mar-2027 "},
        // So it is when another change follows before anything is scheduled anew.
        {"10-Mar-2027", "weekly", 2, "",
         "01-Mar-2027 calendar_add_restricted_dates restrictedYear=2027 startDate=1 restrictedTo=20;"
         "15-Mar-2027 calendar_add_restricted_dates restrictedYear=2027 startDate=16 restrictedTo=16;"
         "25-Mar-2027!calendar_add_restricted_dates restrictedYear=2027 startDate=30 restrictedTo=30;",
         "17-Mar-2027", "15-Mar-2027 17-Mar-2027 "},
        {"01-Mar-2027", "weekly", 3, "", "02-Mar-2027 pause_sip_order;20-Mar-2027 resume_sip_order;",
         "29-Mar-2027", "01-Mar-2027 22-Mar-2027 29-Mar-2027 "},
        // On the day of the resumption it is executed.
        {"01-Mar-2027", "daily", 2, "",
         "26-Feb-2027 pause_sip_order;03-Mar-2027 calendar_add_restricted_dates restrictedYear=2026 "
         "startDate=1 restrictedTo=1;"
         "05-Mar-2027 resume_sip_order;",
         "06-Mar-2027", "05-Mar-2027 08-Mar-2027 "},
        {"05-Mar-2027", "weekly", 4, "",
         "13-Mar-2027 modify_sip_order amountOrQuantity=1 totalPeriod=2;13-Mar-2027 modify_sip_order "
         "amountOrQuantity=1 totalPeriod=3;",
         "19-Mar-2027", "05-Mar-2027 12-Mar-2027 19-Mar-2027 "},
        // A change counts from its day on, days restricted also for what should be executed by then.
        {"01-Mar-2027", "daily", 6, "", "05-Mar-2027!pause_sip_order;08-Mar-2027!resume_sip_order;",
         "06-Mar-2027", "01-Mar-2027 02-Mar-2027 03-Mar-2027 04-Mar-2027 05-Mar-2027 08-Mar-2027 "},
        {"01-Mar-2027", "daily", 4, "",
         "03-Mar-2027!calendar_add_restricted_dates restrictedYear=2027 startDate=2 restrictedTo=3;",
         "04-Mar-2027", "01-Mar-2027 04-Mar-2027 05-Mar-2027 08-Mar-2027 "},
        // An order that is placed by hand is no period.
        {"05-Mar-2027", "daily", 1, "", "01-Mar-2027 by hand;", "05-Mar-2027", "01-Mar-2027 05-Mar-2027 "},
        // What was due before the registration has lapsed.
        {"27-Jan-2026", "weekly", 2, "", "", "10-Mar-2026", "03-Mar-2026 10-Mar-2026 "},
    };
    const TemporaryFolder folder;
    for (const auto& row : rows) {
        WriteJournal(folder.File("journal"), "");
        RunningServer running(folder.File("journal"), Config(row.nonTrading));
        running.Ask(Plan(*ParseRecordDate(row.start), row.frequency, row.periods));
        const std::string number(running.server->Held().All()[0].Number());
        std::istringstream events(row.events);
        for (std::string event; std::getline(events, event, ';');) {
            const Date date = *ParseRecordDate(event.substr(0, 11));
            EXPECT_EQ(running.server->Clock().AdvanceTo(date), "");
            if (event[11] == ' ') running.AdvanceTo(date);
            if (event.ends_with("by hand"))
                EXPECT_EQ(running.server->Clock().Execute(running.server->Held().All()[0], {{date}}), "");
            else
                running.Ask("registrationNumber=" + number + " " + event.substr(12));
        }
        running.AdvanceTo(std::chrono::year(2033) / 1 / 1);
        const Registration held = running.server->Held().All()[0];
        EXPECT_EQ(ExecutedOn(running, number), row.executed) << row.start << row.frequency;
        EXPECT_EQ(held.Text(tag::sipStatus), kStatusExpired) << row.start << row.frequency;
        EXPECT_EQ(held.Text(tag::endDate), row.end) << row.start << row.frequency;
        EXPECT_EQ(
            running.Ask("modify_sip_order amountOrQuantity=1 totalPeriod=99 registrationNumber=" + number),
            std::vector<std::string>{"echoedRequest=modify_sip_order errorCode=108 userText=The registration "
                                     "is expired registrationNumber="
                                     + number});
    }
}

TEST(Instalments, PeriodsBelowTheExecutedOnesAreRefusedAndTheNextDayIsFoundAndTold) {
    const TemporaryFolder folder;
    ServerConfig config = Config();
    config.fills.rejected = 100; // what is rejected counts
    RunningServer running(folder.File("journal"), config);
    running.Ask(Plan(sys_days(*ParseRecordDate("06-Mar-2026")), "weekly", 3));
    const std::string number(running.server->Held().All()[0].Number());
    for (const char* day : {"06-Mar-2026", "13-Mar-2026"}) {
        EXPECT_EQ(running.server->Held().All()[0].Text(tag::nextExecutionDate), day);
        EXPECT_EQ(running.server->Clock().AdvanceToNextInstalment(), "");
        EXPECT_EQ(RecordDate(running.server->Clock().Today()), day);
        EXPECT_EQ(running.server->Clock().ExecuteDue({}).instalments, 1u);
    }
    EXPECT_EQ(running.Ask("modify_sip_order amountOrQuantity=1 totalPeriod=2 registrationNumber=" + number),
              std::vector<std::string>{"echoedRequest=modify_sip_order errorCode=104 userText=The total period "
                                       "must exceed the 2 that are executed registrationNumber="
                                       + number});
    EXPECT_NE(running.Ask("qry_eq_sip_orders registrationNumber=" + number)[1].find("sipStatus=rejected"),
              std::string::npos);
    // By the days as they are, scheduled anew or not yet.
    running.Ask("calendar_add_restricted_dates restrictedYear=2026 startDate=20 restrictedTo=25");
    EXPECT_EQ(running.server->Clock().AdvanceToNextInstalment(), "");
    EXPECT_EQ(RecordDate(running.server->Clock().Today()), "26-Mar-2026");
    EXPECT_EQ(running.server->Clock().ExecuteDue(std::chrono::seconds(1)).instalments, 1u);
    EXPECT_NE(running.server->Clock().AdvanceTo(std::chrono::year(2100) / 1 / 1), "");
}

// One registration as it should be, from day to day.
struct Model {
    Date start;
    std::string frequency;
    int periods;
    std::string number{};
    std::string status{kStatusActive};
    int place = 0;
    int executed = 0;
    bool lapses = false; // today, unless it is resumed
    sys_days last{};
    std::string days{};

    bool Falls(sys_days day) const { return sys_days(InstalmentDate(start, frequency, place)) <= day; }
    void Live(sys_days day, bool isOpen) {
        const bool falls = isOpen && day > last && Falls(day);
        lapses = falls && status == kStatusPaused;
        if (!falls || status != kStatusActive) return;
        last = day;
        days += RecordDate(day) + ' ';
        ++place;
        if (++executed == periods) status = kStatusExpired;
    }
};

class Story {
public:
    Story(const std::filesystem::path& path, unsigned seed) : m_path(path), m_random(seed) {
        for (int i = Below(12); i > 0; --i)
            m_config.nonTrading.push_back(m_today + days(Below(200)));
        std::sort(m_config.nonTrading.begin(), m_config.nonTrading.end());
        Start();
        for (int i = 0; i < 6; ++i) {
            const char* frequencies[] = {"daily", "weekly", "monthly", "yearly"};
            Model model{m_today + days(Below(40)), frequencies[Below(4)], 1 + Below(40)};
            m_running->Ask(Plan(model.start, model.frequency, model.periods));
            model.number = m_running->server->Held().All().back().Number();
            m_models.push_back(std::move(model));
        }
    }
    void Play() {
        for (int i = 0; i < 20; ++i) {
            Work();
            Advance(1 + Below(Below(4) ? 9 : 90));
            // A change of a plan comes behind what was due of it, however far the others are.
            if (Below(3) != 0) {
                Work();
                Check();
            }
            Change();
        }
    }

private:
    int Below(int end) { return static_cast<int>(m_random() % static_cast<unsigned>(end)); }
    void Start() {
        m_running.reset();
        m_running = std::make_unique<RunningServer>(m_path, m_config);
    }
    void LiveToday() {
        const bool isOpen = MarketDays{m_config.nonTrading, m_restricted}.IsOpen(m_today);
        for (Model& model : m_models)
            model.Live(m_today, isOpen);
    }
    void Advance(int count) {
        for (; count > 0; --count) {
            for (Model& model : m_models)
                if (std::exchange(model.lapses, false)) ++model.place;
            m_today += days(1);
            LiveToday();
        }
        ASSERT_EQ(m_running->server->Clock().AdvanceTo(m_today), "");
    }
    // Until nothing is due, with a crash now and then: of what was written last any part may be left.
    void Work() {
        LiveToday();
        for (int crashes = Below(4); m_running->server->Clock().HasDue();) {
            const auto before = std::filesystem::file_size(m_path);
            m_running->server->Clock().ExecuteDue({});
            if (crashes-- <= 0) continue;
            m_running.reset();
            const auto written = std::filesystem::file_size(m_path) - before;
            WriteJournal(m_path, FileText(m_path).substr(0, before + m_random() % (written + 1)));
            Start();
        }
        const std::vector<Registration> held = m_running->server->Held().All();
        if (Below(3) == 0) m_running->server->Upkeep().Renew();
        Start();
        ASSERT_EQ(m_running->server->Held().All(), held);
    }
    void Check() {
        for (const Model& model : m_models) {
            const Registration& held = *m_running->server->Held().Find(model.number);
            ASSERT_EQ(ExecutedOn(*m_running, model.number), model.days) << held.Json();
            ASSERT_EQ(held.Text(tag::sipStatus), model.status);
            if (model.status != kStatusActive) continue;
            sys_days next = m_today + days(1);
            while (!model.Falls(next) || !MarketDays{m_config.nonTrading, m_restricted}.IsOpen(next))
                next += days(1);
            ASSERT_EQ(held.Text(tag::nextExecutionDate), RecordDate(next));
            ASSERT_EQ(held.Text(tag::endDate),
                      RecordDate(InstalmentDate(model.start, model.frequency,
                                                model.place + model.periods - model.executed - 1)));
        }
    }
    void Change() {
        Model& model = m_models[static_cast<std::size_t>(Below(6))];
        const char* names[] = {"pause_sip_order",  "resume_sip_order", "resume_sip_order",
                               "modify_sip_order", "cancel_sip_order", "calendar_add_restricted_dates"};
        const int what = Below(10) ? Below(4) : Below(2) + 4;
        Fields request = std::string(names[what]) + " registrationNumber=" + model.number;
        const bool lives = model.status == kStatusActive || model.status == kStatusPaused;
        if (what == 5) {
            Work();
            const int from = 1 + Below(31), to = from + Below(32 - from);
            const auto year = Date(m_today).year();
            request = "calendar_add_restricted_dates startDate=" + std::to_string(from)
                      + " restrictedTo=" + std::to_string(to) + " restrictedYear=" + std::to_string(int{year});
            m_restricted.Set({static_cast<unsigned>(from), static_cast<unsigned>(to), year, {}});
        } else if (what == 3) {
            const int periods = 1 + Below(40);
            request.merge(Fields("amountOrQuantity=7 totalPeriod=" + std::to_string(periods)));
            if (lives && periods > model.executed) model.periods = periods;
        } else if (lives) {
            model.status = what == 0 ? kStatusPaused : what == 4 ? kStatusCancelled : kStatusActive;
        }
        m_running->Ask(request);
    }

    std::filesystem::path m_path;
    std::mt19937 m_random;
    ServerConfig m_config = Config();
    RestrictedDays m_restricted;
    sys_days m_today = std::chrono::floor<days>(std::chrono::sys_seconds(std::chrono::seconds(kToday)));
    std::unique_ptr<RunningServer> m_running;
    std::vector<Model> m_models;
};

TEST(Instalments, NeitherChangesNorCrashesNorClosedDaysRepeatOrLoseOne) {
    const TemporaryFolder folder;
    for (unsigned seed = 1; seed <= 10 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE(seed);
        WriteJournal(folder.File("journal"), "");
        Story(folder.File("journal"), seed).Play();
    }
}

} // namespace
} // namespace vesk
