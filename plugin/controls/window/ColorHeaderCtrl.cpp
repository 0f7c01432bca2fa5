#include "plugin/controls/window/ColorHeaderCtrl.h"

CColorHeaderCtrl::CColorHeaderCtrl() = default;
CColorHeaderCtrl::~CColorHeaderCtrl() = default;
