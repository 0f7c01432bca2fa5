#include "plugin/basket/BasketHistory.h"

#include "plugin/base/Text.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace planfold {

namespace {

constexpr std::size_t kMostBytes = 96u << 20;
constexpr std::size_t kMostSteps = 1000;

} // namespace

std::size_t BasketHistory::Step::Size() const {
    std::size_t size = sizeof *this + in.size() * sizeof(In) + inLines.size() * sizeof(Place);
    for (const Out& each : out)
        size += sizeof each + each.row.row.Size();
    for (const OutLine& each : outLines)
        size += sizeof each + each.line.text.size() + each.line.report.size() + each.line.reason.size();
    return size;
}

BasketHistory::Seen BasketHistory::Now() const {
    return {m_view.List().RowCount(), m_rejected.lines.size(), m_rows.NextSerial()};
}

void BasketHistory::Clear() {
    m_undo.clear();
    m_redo.clear();
    m_step.reset();
    m_loads = false;
    m_size = 0;
    m_seen = Now();
}

void BasketHistory::Begin() {
    if (m_depth++ > 0) return;
    EndLoad();
    // What changed beside the history would make its places wrong.
    if (!m_undo.empty() || !m_redo.empty())
        if (!(Now() == m_seen)) Clear();
    m_step.emplace();
}

void BasketHistory::End() {
    if (--m_depth > 0 || !m_step) return;
    Step step = *std::exchange(m_step, std::nullopt);
    NoteOrders(step);
    // What was let in meanwhile changed the places of what was there.
    const bool inPlace = std::ranges::equal(step.in, step.out, {}, &In::place, &Out::place);
    if (!step.in.empty() && !step.out.empty() && !inPlace) return Clear();
    Push(std::move(step));
}

void BasketHistory::NoteOrders(Step& step) const {
    std::ranges::sort(step.in, {}, &In::place);
    std::ranges::sort(step.out, {}, &Out::place);
    for (In& in : step.in)
        in.order = m_rows.OrderOf(m_view.List().RecordAt(in.place));
}

void BasketHistory::Push(Step step) {
    m_seen = Now();
    if (step.in.empty() && step.out.empty() && step.inLines.empty() && step.outLines.empty()) return;
    m_redo.clear();
    m_size += step.Size();
    m_undo.push_back(std::move(step));
    for (; m_size > kMostBytes || m_undo.size() > kMostSteps; m_undo.pop_front()) {
        m_size -= m_undo.front().Size();
        m_forgot = true;
    }
}

RecordId BasketHistory::Add(const BasketTexts& texts) {
    const Change change(*this);
    const RecordId record = m_rows.Add(texts);
    m_view.List().InsertFront(record);
    m_step->in.push_back({static_cast<Place>(m_step->in.size()), kNoOrder});
    return record;
}

void BasketHistory::Replace(RecordId record, const BasketTexts& texts) {
    const Change change(*this);
    const auto place = static_cast<Place>(m_view.List().IndexOf(record));
    TakenRow after{sBasketOrderData(texts, 0)};
    m_step->out.push_back({place, m_rows.Take(record)});
    m_rows.PutBack(record, std::move(after), RowState::notSent);
    m_step->in.push_back({place, kNoOrder});
    m_view.List().Repaint(record);
}

void BasketHistory::Remove(const std::vector<RecordId>& records, const std::function<void()>& takeFromList) {
    const Change change(*this);
    std::vector<Place> places;
    places.reserve(records.size());
    for (const RecordId record : records)
        places.push_back(static_cast<Place>(m_view.List().IndexOf(record)));
    takeFromList();
    for (std::size_t i = 0; i < records.size(); ++i) {
        m_step->out.push_back({places[i], m_rows.Take(records[i])});
        m_rows.Release(records[i]);
    }
}

void BasketHistory::Reject(RejectedLine line) {
    const Change change(*this);
    m_step->inLines.push_back(static_cast<Place>(m_rejected.lines.size()));
    m_rejected.lines.push_back(std::move(line));
}

void BasketHistory::RemoveRejected(std::size_t index) {
    const Change change(*this);
    const auto line = m_rejected.lines.begin() + static_cast<std::ptrdiff_t>(index);
    m_step->outLines.push_back({static_cast<Place>(index), std::move(*line)});
    m_rejected.lines.erase(line);
}

void BasketHistory::BeginLoad(const std::string& file) {
    Begin();
    --m_depth;
    const BasketList& list = m_view.List();
    for (std::size_t row = 0; row < list.RowCount(); ++row)
        m_step->out.push_back({static_cast<Place>(row), m_rows.Take(list.RecordAt(row))});
    for (std::size_t i = 0; i < m_rejected.lines.size(); ++i)
        m_step->outLines.push_back({static_cast<Place>(i), std::move(m_rejected.lines[i])});
    m_view.List().RemoveAll();
    m_rows.Clear();
    m_rejected = {};
    m_step->file = std::exchange(m_file, file);
    m_loads = true;
    if (m_step->Size() <= kMostBytes) return;
    Clear();
    m_forgot = true;
}

void BasketHistory::EndLoad() {
    if (!std::exchange(m_loads, false)) return;
    Step step = *std::exchange(m_step, std::nullopt);
    for (std::size_t row = 0; row < m_view.List().RowCount(); ++row)
        step.in.push_back({static_cast<Place>(row), kNoOrder});
    for (std::size_t i = 0; i < m_rejected.lines.size(); ++i)
        step.inLines.push_back(static_cast<Place>(i));
    NoteOrders(step);
    Push(std::move(step));
}

RecordId BasketHistory::SentSince(const Step& step) const {
    for (const In& in : step.in) {
        const RecordId record = m_view.List().RecordAt(in.place);
        if (m_rows.OrderOf(record) != in.order) return record;
    }
    return kNoRecord;
}

std::optional<std::string> BasketHistory::Go(std::deque<Step>& from, std::deque<Step>& to, const char* what) {
    EndLoad();
    if (!(Now() == m_seen) && m_depth == 0) Clear();
    if (m_depth > 0 || from.empty())
        return &from == &m_undo && m_forgot ? "The changes before this were too large to be kept."
                                            : Format("There is nothing to %s.", what);
    if (const RecordId sent = SentSince(from.back()); sent != kNoRecord)
        return Format("Orders of that change were sent since, the first of them for %s.\n"
                      "What was sent stays; nothing before it can be undone.",
                      std::string(m_rows[sent].Text(BasketField::account)).c_str());
    Step step = std::move(from.back());
    from.pop_back();
    if (&from == &m_undo) m_size -= step.Size();
    m_view.List().BeginChanges();
    Swap(step);
    m_view.List().EndChanges();
    if (&to == &m_undo) m_size += step.Size();
    to.push_back(std::move(step));
    m_seen = Now();
    return std::nullopt;
}

void BasketHistory::Swap(Step& step) {
    if (step.file) std::swap(*step.file, m_file);
    if (!SwapInPlace(step)) SwapRows(step);
    SwapLines(step);
    m_rejected.corrected = 0;
}

RowState BasketHistory::StateOf(const TakenRow& row) const {
    return row.order == kNoOrder ? row.state : RowStateOf(m_record.Ledger()[row.order].State());
}

// Rows that were changed where they stand, as those of nearly every step; false for any other.
bool BasketHistory::SwapInPlace(Step& step) {
    if (!std::ranges::equal(step.in, step.out, {}, &In::place, &Out::place)) return false;
    for (std::size_t i = 0; i < step.in.size(); ++i) {
        const RecordId record = m_view.List().RecordAt(step.in[i].place);
        TakenRow now = m_rows.Take(record);
        TakenRow& before = step.out[i].row;
        step.in[i].order = before.order;
        const RowState state = StateOf(before);
        m_rows.PutBack(record, std::exchange(before, std::move(now)), state);
        m_view.List().Repaint(record);
    }
    return true;
}

// The list takes rows on top only: those above the deepest change come anew.
void BasketHistory::SwapRows(Step& step) {
    BasketList& list = m_view.List();
    const std::size_t before = list.RowCount();
    const std::size_t after = before - step.in.size() + step.out.size();
    const std::size_t deepestIn = step.in.empty() ? 0 : step.in.back().place + 1u;
    const std::size_t deepestOut = step.out.empty() ? 0 : step.out.back().place + 1u;
    const std::size_t kept = std::min(before - deepestIn, after - deepestOut);
    std::vector<RecordId> moved;
    for (std::size_t row = 0; row < before - kept; ++row)
        moved.push_back(list.RecordAt(row));
    if (kept == 0)
        list.RemoveAll();
    else
        for (const RecordId record : moved)
            list.Remove(record);

    std::vector<Out> out;
    std::vector<RecordId> left, stay;
    auto in = step.in.begin();
    for (std::size_t row = 0; row < moved.size(); ++row) {
        if (in == step.in.end() || in->place != row) {
            stay.push_back(moved[row]);
            continue;
        }
        ++in;
        out.push_back({static_cast<Place>(row), m_rows.Take(moved[row])});
        left.push_back(moved[row]);
    }
    step.in.clear();
    std::vector<RecordId> order;
    auto next = stay.begin();
    auto back = step.out.begin();
    while (order.size() < after - kept) {
        if (back == step.out.end() || back->place != order.size()) {
            order.push_back(*next++);
            continue;
        }
        order.push_back(m_rows.Reserve());
        step.in.push_back({back->place, back->row.order});
        const RowState state = StateOf(back->row);
        m_rows.PutBack(order.back(), std::move(back->row), state);
        ++back;
    }
    step.out = std::move(out);
    for (auto record = order.rbegin(); record != order.rend(); ++record)
        list.InsertFront(*record);
    for (const RecordId record : left)
        m_rows.Release(record);
}

void BasketHistory::SwapLines(Step& step) {
    std::vector<RejectedLine>& lines = m_rejected.lines;
    std::vector<OutLine> out;
    std::vector<RejectedLine> stay, now;
    auto in = step.inLines.begin();
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (in != step.inLines.end() && *in == i) {
            out.push_back({*in++, std::move(lines[i])});
        } else {
            stay.push_back(std::move(lines[i]));
        }
    step.inLines.clear();
    auto next = stay.begin();
    for (OutLine& back : step.outLines) {
        while (now.size() < back.place)
            now.push_back(std::move(*next++));
        step.inLines.push_back(back.place);
        now.push_back(std::move(back.line));
    }
    std::move(next, stay.end(), std::back_inserter(now));
    lines = std::move(now);
    step.outLines = std::move(out);
}

} // namespace planfold
