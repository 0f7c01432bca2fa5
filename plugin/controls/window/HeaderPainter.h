// What draws the cells of a header that have colours of their own. The header asks its parent how its cells are
// to be drawn: both are watched.
//
// Nothing is defined here: in a file that exports a class the compiler also exports the type information of
// every class whose code it makes.
#pragma once

#include "framework/Colours.h"
#include "framework/Subclass.h"

#include <map>

namespace planfold {

class HeaderPainter final {
public:
    // Null when there is no memory.
    static HeaderPainter* Make() noexcept;
    ~HeaderPainter();

    bool Attach(HWND header) noexcept;
    void Detach() noexcept;
    HWND Handle() const noexcept;
    void Set(int item, const framework::Colours& colours) noexcept;
    void Reset() noexcept;

private:
    class Header final : public framework::Subclass {
    public:
        explicit Header(HeaderPainter& owner);
        ~Header() override;

    private:
        void OnGone() override;
        HeaderPainter& m_owner;
    };
    class Parent final : public framework::Subclass {
    public:
        explicit Parent(HeaderPainter& owner);
        ~Parent() override;

    private:
        std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
        HeaderPainter& m_owner;
    };

    HeaderPainter();
    void Redraw() const;
    // False for a cell that is the system's.
    bool Draw(const NMCUSTOMDRAW& draw) const;
    static void DrawArrow(HDC dc, const RECT& place, bool up, COLORREF colour, UINT dpi);

    std::map<int, framework::Colours> m_colours;
    Header m_header{*this};
    Parent m_parent{*this};
};

} // namespace planfold
