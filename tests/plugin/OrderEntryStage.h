// The order entry form without a window.
#pragma once

#include "plugin/orderentry/OrderEntry.h"
#include "plugin/resources/resource.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

namespace planfold::test {

class OrderEntryTest : public ::testing::Test, protected Stage {
protected:
    static constexpr LocalDateTime kNow{2027, 1, 31, 15, 30, 0};

    void SetUp() override {
        view.controls[IDC_SERIES].items = {"BE", "EQ"};
        view.controls[IDC_SYMBOL].items = {"ARBORTEX", "BETA"};
        view.controls[IDC_CLIENT_COMBO].items = {"C001", "C002"};
        view.controls[IDC_HOST_PRODUCTS].items = {"CNC", "MIS", "NRML"};
    }

    void Open(std::string_view customProducts = {}) { entry.Initialise(kNow, customProducts); }
    void Answer(const Fields& fields) { entry.OnResponse(Received(fields).Message()); }
    void Type(std::string_view value, std::string_view period, std::string_view client) {
        view.SetText(IDC_VALUE, value);
        view.SetText(IDC_PERIOD, period);
        view.SetText(IDC_CLIENT_SEARCH, client);
    }
    Texts Items(int combo) const { return view.controls[combo].items; }

    OrderEntryDouble view;
    OrderEntry entry{session, view, &control};
};

} // namespace planfold::test
