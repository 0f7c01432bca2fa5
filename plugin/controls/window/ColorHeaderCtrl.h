// The header of a list, its single cells in colours of their own. For the plug-in's host as well: exported
// under this compiler's names, so for hosts built with the same compiler.
//
// The header stays the system's; this object stands in front of it. It may be taken away before or after the
// header, and put before another. In high contrast all cells look as the system wants.
//
// Thread: the one of the header. Nothing throws across.
#pragma once

#include <windows.h>

#ifdef PLANFOLD_BUILDING
#define PLANFOLD_CLASS __declspec(dllexport)
#else
#define PLANFOLD_CLASS __declspec(dllimport)
#endif

namespace planfold {
class HeaderPainter;
}

class PLANFOLD_CLASS CColorHeaderCtrl {
public:
    CColorHeaderCtrl() noexcept;
    CColorHeaderCtrl(const CColorHeaderCtrl&) = delete;
    CColorHeaderCtrl& operator=(const CColorHeaderCtrl&) = delete;
    virtual ~CColorHeaderCtrl();

    // Until Detach, another Attach or the header's end. False when the system refuses. Colours stay.
    bool Attach(HWND header) noexcept;
    void Detach() noexcept;
    // Null without a header.
    HWND Handle() const noexcept;

    // `item` is the header's own number of the cell, not its place. CLR_DEFAULT is the system's colour.
    void SetItemColors(int item, COLORREF text, COLORREF background) noexcept;
    void ResetColors() noexcept;

private:
    planfold::HeaderPainter* m_header;
};
