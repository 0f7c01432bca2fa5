#include "bench/Cases.h"

#include "bench/SampleBasket.h"

#include <deque>
#include <memory>

namespace bench {
namespace {

using namespace planfold;

class Rows final : public BasketSink {
public:
    void OnRow(const BasketTexts& texts) override {
        rows.emplace_front(texts, static_cast<std::int32_t>(rows.size()));
    }
    void OnRejected(const RejectedLine& line, const BasketTexts&) override { rejected.push_back(line.report); }
    void OnNotice(std::string_view) override {}
    void OnLog(std::string_view) override {}

    std::deque<sBasketOrderData> rows;
    std::vector<std::string> rejected;
};

struct Sample : SampleBasket {
    using SampleBasket::SampleBasket;

    void Load(const std::string& from, std::size_t expectedRows, Rows& into) {
        SampleBasket::Load(from, into);
        Require(into.rows.size() == expectedRows, "loading a basket");
    }

    std::unique_ptr<Rows> rows;
    std::string exported;
};

std::size_t Cut(const std::string& text) {
    std::size_t fields = 0;
    BasketLines lines(text);
    BasketTexts columns;
    while (const auto line = lines.Next())
        if (SplitBasketLine(line->text, columns)) fields += columns[BasketField::account].size();
    return fields;
}

std::string Named(const char* name, std::uint32_t lines) {
    return name + ("-" + std::to_string(lines));
}

} // namespace

std::vector<Case> BasketCases(std::uint32_t lines, bool peers) {
    auto sample = std::make_shared<Sample>(lines);
    // The rows before are given back before the clock runs.
    const auto empty = [=] {
        sample->rows.reset();
        sample->rows = std::make_unique<Rows>();
    };
    const auto filled = [=] {
        if (sample->rows && sample->rows->rows.size() == lines) return;
        empty();
        sample->Load(sample->text, lines, *sample->rows);
    };
    const auto writeAll = [=] {
        sample->exported.clear();
        for (const sBasketOrderData& row : sample->rows->rows)
            AppendBasketLine(row, sample->exported);
        Require(sample->exported.size() == sample->text.size(), "writing a basket");
    };
    std::vector<Case> cases = {
        {Named("load", lines), [=] { sample->Load(sample->text, lines, *sample->rows); }, lines, empty},
        {Named("export", lines), writeAll, lines, filled},
        {Named("load-bad", lines), [=] { sample->Load(sample->withBad, sample->GoodOfBad(), *sample->rows); },
         lines, empty},
        {Named("cut", lines), [=] { Require(Cut(sample->text) != 0, "cutting"); }, lines},
        {Named("floor", lines), [=] { Require(CountLineEnds(sample->text) == lines, "memchr"); }, lines},
    };
    if (!peers) return cases;
    const auto byLibcsv = [=] { Require(CutByLibcsv(sample->text) == lines * 21ul, "libcsv"); };
    const auto plainly = [=] {
        Require(LoadPlainly(sample->text, sample->scrips.tokens, sample->rules.now) == lines, "plain load");
    };
    cases.push_back({Named("cut-libcsv", lines), byLibcsv, lines});
    cases.push_back({Named("load-plain", lines), plainly, lines});
    return cases;
}

double BytesOfARow(std::uint32_t lines) {
    Sample sample(lines);
    std::deque<sBasketOrderData> rows;
    {
        Rows loaded;
        sample.Load(sample.text, lines, loaded);
        rows = std::move(loaded.rows);
    }
    const std::size_t full = HeapBytes();
    rows = std::deque<sBasketOrderData>();
    return static_cast<double>(full - HeapBytes()) / lines;
}

} // namespace bench
