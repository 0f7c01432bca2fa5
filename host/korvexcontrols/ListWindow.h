// The list's own side of the control: cells, colours, menus, keys and columns over the model.
#pragma once

#include "framework/Subclass.h"
#include "host/korvexcontrols/FilterListCtrl.h"
#include "host/korvexcontrols/ListSync.h"

#include <optional>
#include <string>
#include <vector>

class CFilterListCtrl::Impl final : private korvex::CellSource, private framework::Subclass {
public:
    explicit Impl(CFilterListCtrl& face) : m_face(face) {}

    bool Attach(const Args& args);
    HWND Handle() const { return framework::Subclass::Handle(); }

    const korvex::ListModel& Model() const { return m_model; }
    // Runs the operation on the model and lets the window follow.
    template <class Operation>
    void Apply(Operation&& operation);
    void InsertFront(std::uint32_t record);
    void Remove(std::uint32_t record);
    void RemoveAll();
    void Repaint(std::uint32_t record);
    void SelectOnly(std::uint32_t record);
    void Deselect(std::uint32_t record);
    void SetOwnerFilter(std::int32_t column, const char* text);
    void BeginChanges();
    void EndChanges();
    void AdoptSelection() { m_sync.AdoptSelection(); }

    std::optional<LRESULT> HandleNotify(const NMHDR& notification);

private:
    void Cells(std::span<const std::uint32_t> records, std::int32_t column, std::string_view* texts) override;
    void OnGone() override;

    std::string_view CellAt(int row, int column);
    template <class Item, class Copy>
    void AnswerCell(Item& item, Copy&& copy);

    CFilterListCtrl& m_face;
    CListOwner* m_owner = nullptr;
    korvex::ListModel m_model{*this};
    korvex::ListSync m_sync{m_model};
    std::string m_name;
    std::vector<KorvexText> m_fetched;
    int m_changes = 0; // calls of BeginChanges that are open
    bool m_changed = false;
    korvex::ListSync::Before m_before;
};
