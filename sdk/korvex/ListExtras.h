// What a shared list does besides CFilterListCtrl: says why it is empty, sums rows up, and shows views of its
// owner's. Only later libraries have it, so that it is looked for by name, "KorvexExtrasOf", and done without
// where it is not found.
//
// Thread:   the GUI thread. Nothing throws across.
// Owner:    the list; the interface lives as long as the list's object. Later libraries add operations behind
//           the last one.
//
// Example, a list that says why it is empty, and what its shown rows come to by side:
//
//     const FARPROC found = GetProcAddress(GetModuleHandleA("KorvexControls.dll"), kKorvexExtrasOf);
//     KorvexListExtras* extras = found ? reinterpret_cast<KorvexExtrasOfFunction*>(found)(&m_list) : nullptr;
//     if (!extras) return; // an older library
//     extras->SetEmptyText("No order has been placed today.");
//     extras->SumBy(kSideColumn, kAmountColumn, kQuantityColumn);
//     extras->Watch(this);
//     ...
//     void ListSaysMore(CFilterListCtrl*) noexcept override { // also when the sums are known
//         KorvexSide sides[2];
//         ShowSums(sides, m_extras->Sums(0, sides, 2));
//     }
#pragma once

#include "sdk/korvex/FilterListCtrl.h"

// What the rows of one side come to, by the text of a column.
struct KorvexSide {
    KorvexText name; // valid until the list's next call
    std::uint32_t rows;
    std::uint32_t reserved;
    std::int64_t paise;
    std::int64_t quantity;
};

// Rows that the owner chooses by its own knowledge. At most one of them shows at a time, but switches stand
// beside it and beside each other.
struct KorvexCondition {
    const char* name;        // as the menu and the files have it
    std::int32_t isSwitch;   // 0 or 1
    std::int32_t isPossible; // 0 greys it
};

class KorvexListWatcher {
public:
    // The sums, a condition or a filter are others.
    virtual void ListSaysMore(CFilterListCtrl* list) noexcept = 0;
    // Non-zero when the record meets the condition.
    virtual std::int32_t Meets(std::uint32_t record, std::int32_t condition) noexcept = 0;

protected:
    ~KorvexListWatcher() = default;
};

class KorvexListExtras {
public:
    // Null ends it. It must be ended before the watcher goes.
    virtual void Watch(KorvexListWatcher* watcher) noexcept = 0;
    // What a list without any row says in its middle.
    virtual void SetEmptyText(const char* text) noexcept = 0;
    // The columns by which sides are told and that are summed up.
    virtual void SumBy(std::int32_t side, std::int32_t amount, std::int32_t quantity) noexcept = 0;
    // Of the shown rows, or when `selected` is not 0 of the selected ones. Returns how many sides there are, at
    // most `capacity`; -1 while the sums are not known.
    virtual std::int32_t Sums(std::int32_t selected, KorvexSide* sides, std::int32_t capacity) noexcept = 0;
    // Copied; those that the user had chosen hold again. Called again when what is possible has changed.
    virtual void SetConditions(const KorvexCondition* conditions, std::int32_t count) noexcept = 0;
    // The names of the view and the switches that hold, between commas; valid until the next call.
    virtual const char* ViewName() noexcept = 0;
    // Not 0: the last text column takes what room the columns leave.
    virtual void StretchLastText(std::int32_t on) noexcept = 0;
    // From now on the place and the size of the list's own window are kept under the list's name, and those
    // that were kept come back. What resets the columns gives it the size again that it has now.
    virtual void KeepWindow() noexcept = 0;

protected:
    ~KorvexListExtras() = default;
};

using KorvexExtrasOfFunction = KorvexListExtras*(CFilterListCtrl* list);
inline constexpr char kKorvexExtrasOf[] = "KorvexExtrasOf";
