// The basket's window as the code that decides sees it.
#pragma once

#include "plugin/base/LongRun.h"
#include "plugin/basket/BasketReading.h"
#include "plugin/controls/DialogView.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// The list of the rows. Row 0 is the newest; filters and sort change nothing of the rows' order.
class BasketList {
public:
    virtual std::size_t RowCount() const = 0;
    virtual std::size_t ShownCount() const = 0;
    virtual RecordId RecordAt(std::size_t row) const = 0;
    // Of a record that stands there, in the same order.
    virtual std::size_t IndexOf(RecordId record) const = 0;
    virtual void InsertFront(RecordId record) = 0;
    virtual void Repaint(RecordId record) = 0;
    virtual void Remove(RecordId record) = 0;
    virtual void RemoveAll() = 0;
    // Between the two the list is not drawn.
    virtual void BeginChanges() = 0;
    virtual void EndChanges() = 0;

    // The shown, selected rows from the top.
    virtual std::vector<RecordId> Selected() const = 0;
    virtual RecordId FirstSelected() const = 0; // kNoRecord when none is
    // Removes them; the row that then stands where the last of them stood has the focus.
    virtual void RemoveSelected() = 0;

protected:
    ~BasketList() = default;
};

// The file of the user's directory in which the orders that were not sent outlive the session.
class UnsentFile {
public:
    // None when there is none, or no place for one.
    virtual std::optional<std::string> Read() = 0;
    // An empty text leaves no file. When anything fails, the old content stays. What failed; empty when nothing
    // did, or when there is no place for such a file.
    virtual std::string Replace(std::string_view text) = 0;
    // Writes the text into another file, which nobody replaces. Its name for the user; empty when it fails.
    virtual std::string SaveAside(std::string_view text, const LocalDateTime& now) = 0;

protected:
    ~UnsentFile() = default;
};

enum class Choice { yes, no, cancel };

// A file whose columns are settled.
struct ImportChoice {
    std::string path;
    BeginReading begin;
};

class BasketView : public DialogView {
public:
    virtual BasketList& List() = 0;
    virtual std::string Title() const = 0;
    // False while another box is open. That one comes to the front, and Basket hears when it is gone.
    virtual bool MayAsk() = 0;
    // A question with Yes and No, No being the default; true for Yes.
    virtual bool Ask(Pass pass, std::string_view question) = 0;
    // One with Cancel as well.
    virtual Choice Choose(Pass pass, std::string_view question) = 0;
    virtual UnsentFile& Unsent() = 0;
    // None when the user gives none.
    virtual std::optional<std::string> AskLoadPath(Pass pass) = 0;
    virtual std::optional<std::string> AskExportPath(Pass pass) = 0;
    virtual std::optional<std::string> AskRejectsPath(Pass pass) = 0;
    // Lets the user choose a file of any form and say how its columns are read; none when the user does not.
    virtual std::optional<ImportChoice> AskImport(Pass pass, const BasketRules& rules) = 0;
    // None when it cannot be opened or read.
    virtual std::optional<std::string> ReadFile(const std::string& path) = 0;
    // Replaces the file as a whole, or leaves it as it was and returns false. Line feeds become the platform's
    // line ends.
    virtual bool WriteFileWhole(const std::string& path, std::string_view text) = 0;
    // A key of the desk's limits in the settings file; empty when it is not there.
    virtual std::string DeskLimit(const std::string& key) = 0;
    virtual void ShowWaiting(bool waiting) = 0;
    // What stands in the status line, or on the panel of rejected lines and results, is no longer true.
    virtual void ShowStatus() = 0;
    // The same of both, once for many changes.
    virtual void ShowStatusSoon() = 0;
    virtual void ShowPanel() = 0;
    // A load or a placing has begun, gone on or ended.
    virtual void ShowRun() = 0;
    // The calendar's clock.
    virtual LocalDateTime Now() const = 0;
    // A clock that only goes forward.
    virtual std::int64_t Milliseconds() const = 0;

protected:
    ~BasketView() = default;
};

} // namespace planfold
