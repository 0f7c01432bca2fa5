// A list header whose cells can be coloured, exported for hosts built with the same compiler.
#pragma once

#include "framework/Window.h"

class __declspec(dllexport) CColorHeaderCtrl {
public:
    CColorHeaderCtrl();
    virtual ~CColorHeaderCtrl();
    CColorHeaderCtrl(const CColorHeaderCtrl&) = delete;
    CColorHeaderCtrl& operator=(const CColorHeaderCtrl&) = delete;

private:
    framework::Window m_header;
};
