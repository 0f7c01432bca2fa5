// Whether the one who let the host in is still there. A host callback, a message box, a file dialog and a
// request whose values the host is asked for run a message loop: in it the window may be closed or opened anew,
// and the session ended. Each of these calls takes a Pass, which only a Lifetime makes, and the Lifetime tells
// what came of it.
#pragma once

#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

namespace planfold {

// The leave to let the host in.
class Pass {
    friend class Lifetime;
    Pass() = default;
};

// The answer to a yes-or-no question, which counts only for one who is still there.
enum class [[nodiscard]] Reply{over, no, yes};

class Lifetime {
public:
    Lifetime() = default;
    // `isThere` tells what can end the life besides another one that begins.
    explicit Lifetime(std::function<bool()> isThere) : m_isThere(std::move(isThere)) {}
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

    // Another life begins: calls that are under way belong to the one before.
    void Renew() { ++m_number; }
    int Number() const { return m_number; }
    bool IsThere() const { return !m_isThere || m_isThere(); }

    // Makes the call. Its result is had only when the life is still the same: a bool as a Reply, no result as
    // whether it is, any other as an optional.
    template <class Call>
    [[nodiscard]] auto Across(Call&& call) const {
        using Result = std::invoke_result_t<Call, Pass>;
        const int before = m_number;
        const auto isSame = [&] { return m_number == before && IsThere(); };
        if constexpr (std::is_void_v<Result>) {
            call(Pass());
            return isSame();
        } else if constexpr (std::is_same_v<Result, bool>) {
            const bool yes = call(Pass());
            return !isSame() ? Reply::over : yes ? Reply::yes : Reply::no;
        } else {
            std::optional<Result> result(std::in_place, call(Pass()));
            if (!isSame()) result.reset();
            return result;
        }
    }

    // The call after which nothing of the caller's comes, or nothing that a life could end.
    template <class Call>
    static void Last(Call&& call) {
        call(Pass());
    }

private:
    std::function<bool()> m_isThere;
    int m_number = 0;
};

} // namespace planfold
