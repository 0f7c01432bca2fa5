// Doubles of what stands around the plug-in's core: the request control, the dialog and failing calls of the
// connection library.
#pragma once

#include "host/connectvesk/QmxHost.h"
#include "plugin/controls/DialogView.h"
#include "sdk/RxControl.h"
#include "tests/plugin/HostDouble.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace planfold::test {

// Keeps every request and subscription as one line of text.
class RecordingControl final : public RxControl {
public:
    int SendRequest(std::uint64_t*, void* message, int, QmxError*) override {
        if (refuses) return 0;
        sent.push_back(qmx::Dump(message));
        return 1;
    }
    int Subscribe(std::uint64_t*, const std::uint32_t* tags, const QmxDatum* values, std::uint32_t count,
                  RxControl* self, int zeroA, int zeroB, int one, QmxError* error) override {
        std::string line = self == this && zeroA == 0 && zeroB == 0 && one == 1 ? "" : "(bad call) ";
        for (std::uint32_t i = 0; i < count; ++i) {
            const bool absent = !values[i].data && values[i].length == 0;
            line += (i ? " " : "") + std::to_string(tags[i]) + "="
                    + (absent ? "-" : std::string(qmx::View(values[i])));
        }
        subscribed.push_back(line);
        error->code = 42;
        return !refuses;
    }
    int Stop(int) override { return 1; }
    void Reserved0() override {}
    void Reserved1() override {}
    void Reserved2() override {}
    void Reserved3() override {}
    void Reserved6() override {}
    void Reserved7() override {}
    void Reserved8() override {}
    void Reserved9() override {}
    void Reserved10() override {}
    void Reserved11() override {}
    void Reserved12() override {}
    void Reserved13() override {}
    void Reserved14() override {}

    std::vector<std::string> sent;
    std::vector<std::string> subscribed;
    bool refuses = false;
};

// A dialog without a window.
class DialogDouble final : public DialogView {
public:
    struct Control {
        std::string text;
        std::vector<std::string> items;
        int selected = -1;
        bool shown = true;
        bool enabled = true;
        bool digitsOnly = false;
    };

    void ShowMessage(std::string_view text) override { boxes.emplace_back(text); }
    HostWindow Handle() const override { return nullptr; }
    void SetTitle(std::string_view text) override { title = text; }
    void Close() override { closed = true; }

    std::string Text(int id) const override {
        const Control& control = controls[id];
        return control.selected >= 0 ? control.items.at(static_cast<std::size_t>(control.selected))
                                     : control.text;
    }
    void SetText(int id, std::string_view text) override { controls[id].text = text; }
    void Show(int id, bool shown) override { controls[id].shown = shown; }
    void Enable(int id, bool enabled) override { controls[id].enabled = enabled; }
    void Focus(int id) override { focused = id; }
    void SetDigitsOnly(int id, bool on) override { controls[id].digitsOnly = on; }
    std::vector<std::string> Items(int id) const override { return controls[id].items; }
    void AddItem(int id, std::string_view text) override { controls[id].items.emplace_back(text); }
    void Select(int id, int index) override {
        Control& control = controls[id];
        control.selected = index < static_cast<int>(control.items.size()) ? index : -1;
    }
    bool SelectText(int id, std::string_view text) override {
        Control& control = controls[id];
        for (std::size_t i = 0; i < control.items.size(); ++i)
            if (control.items[i] == text) {
                control.selected = static_cast<int>(i);
                return true;
            }
        return false;
    }
    LocalDateTime Date(int) const override { return date; }
    void SetDate(int, const LocalDateTime& value) override { date = value; }

    mutable std::map<int, Control> controls;
    std::vector<std::string> boxes;
    std::string title;
    LocalDateTime date;
    int focused = 0;
    bool closed = false;
};

// Lets the n-th call (from 1) of a connection library function fail while it lives.
class FailQmxCall {
public:
    enum Function { openScratch, ctorPrimeCb, startMsg, addData, functionCount };

    FailQmxCall(Function function, int call);
    FailQmxCall(const FailQmxCall&) = delete;
    FailQmxCall& operator=(const FailQmxCall&) = delete;
    ~FailQmxCall();
};

// Opening handles anew leaves the old ones open; a test that does so closes them with this.
class EarlierHandles {
public:
    explicit EarlierHandles(const Session& session)
        : m_primeCb(session.m_primeCb), m_scratch(session.m_scratch) {}
    EarlierHandles(const EarlierHandles&) = delete;
    EarlierHandles& operator=(const EarlierHandles&) = delete;
    ~EarlierHandles() {
        QmxError error{};
        qmx_dtor_primecb(&m_primeCb, &error);
        qmx_close_scratch(&m_scratch, &error);
    }

private:
    void* m_primeCb;
    void* m_scratch;
};

// A message as the host hands it to a notifier.
class Received {
public:
    struct Field {
        std::uint32_t tag;
        std::vector<std::string> values;
    };

    explicit Received(const std::vector<Field>& fields);
    void* Message() const { return m_reader->Handle(); }

private:
    std::string m_bytes;
    std::unique_ptr<qmx::MessageReader> m_reader;
};

} // namespace planfold::test
