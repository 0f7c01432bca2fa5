#include "plugin/controls/window/ColorHeaderCtrl.h"

#include "plugin/controls/window/HeaderPainter.h"

using planfold::HeaderPainter;

CColorHeaderCtrl::CColorHeaderCtrl() noexcept : m_header(HeaderPainter::Make()) {}

CColorHeaderCtrl::~CColorHeaderCtrl() {
    delete m_header;
}

bool CColorHeaderCtrl::Attach(HWND header) noexcept {
    return m_header && m_header->Attach(header);
}

void CColorHeaderCtrl::Detach() noexcept {
    if (m_header) m_header->Detach();
}

HWND CColorHeaderCtrl::Handle() const noexcept {
    return m_header ? m_header->Handle() : nullptr;
}

void CColorHeaderCtrl::SetItemColors(int item, COLORREF text, COLORREF background) noexcept {
    if (m_header) m_header->Set(item, {text, background});
}

void CColorHeaderCtrl::ResetColors() noexcept {
    if (m_header) m_header->Reset();
}
