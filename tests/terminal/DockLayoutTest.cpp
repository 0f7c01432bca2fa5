#include "host/terminal/docking/DockLayout.h"

#include <gtest/gtest.h>

namespace vesk {
namespace {

using Kind = DockTarget::Kind;

constexpr DockRect kArea{0, 40, 1000, 640};
constexpr DockMetrics kMetrics{96, 20, 20, true};
constexpr PaneId kBook = 1, kHistory = 2, kNews = 3;

std::string Dump(const DockRect& rect) {
    if (rect.Empty()) return "-";
    return std::to_string(rect.left) + ',' + std::to_string(rect.top) + ' ' + std::to_string(rect.right) + ','
           + std::to_string(rect.bottom);
}

std::string Dump(const DockHit& hit) {
    constexpr const char* names[] = {"nothing", "caption", "float", "close", "tab", "splitter"};
    return names[static_cast<int>(hit.part)] + (' ' + std::to_string(hit.pane));
}

std::string Dump(const std::optional<DockTarget>& target) {
    constexpr const char* sides[] = {"left", "right", "top", "bottom"};
    if (!target) return "stay";
    if (target->kind == Kind::floating) return "float";
    if (target->kind == Kind::tabs) return "tabs " + std::to_string(target->partner);
    return sides[static_cast<int>(target->side)];
}

// "Book" below, "History" at its left edge's inside, as two groups; "News" floats.
DockLayout ThreePanes() {
    DockLayout layout;
    layout.Add(kHistory, "History", {DockSide::left, 200, {}, false, {}}, true);
    layout.Add(kBook, "Book", {}, true);
    layout.Add(kNews, "News", {DockSide::bottom, 150, "Book", true, {9, 9, 99, 99}}, true);
    return layout;
}

// What each step leaves: the centre, then every pane's content, "-" for one that is not seen.
TEST(DockLayout, SharesTheAreaAmongThePanes) {
    DockLayout layout = ThreePanes();
    const struct {
        const char* step;
        void (*run)(DockLayout&);
        const char* places; // centre | History | Book | News
    } rows[] = {
        {"as they came", [](DockLayout&) {}, "205,40 1000,385|0,60 200,385|0,410 1000,640|-"},
        {"hidden, its room goes to the others", [](DockLayout& l) { l.SetShown(kBook, false); },
         "205,40 1000,640|0,60 200,640|-|-"},
        {"shown again at its place", [](DockLayout& l) { l.SetShown(kBook, true); },
         "205,40 1000,385|0,60 200,385|0,410 1000,640|-"},
        {"docked beside its remembered partner", [](DockLayout& l) { l.ToggleFloating(kNews); },
         "205,40 1000,385|0,60 200,385|-|0,410 1000,620"},
        {"the tab in front is hidden", [](DockLayout& l) { l.SetShown(kNews, false); },
         "205,40 1000,385|0,60 200,385|0,410 1000,640|-"},
        {"outermost at the right",
         [](DockLayout& l) {
             l.Move(kHistory, {Kind::side, DockSide::right});
         },
         "0,40 795,385|800,60 1000,640|0,410 795,640|-"},
        {"pulled past the centre's least",
         [](DockLayout& l) {
             l.DragSplitter(0, {10, 0});
         },
         "0,40 90,385|95,60 1000,640|0,410 90,640|-"},
        {"pushed into the edge",
         [](DockLayout& l) {
             l.DragSplitter(0, {1200, 0});
         },
         "0,40 905,385|910,60 1000,640|0,410 905,640|-"},
        {"floats", [](DockLayout& l) { l.ToggleFloating(kHistory); }, "0,40 1000,385|-|0,410 1000,640|-"},
        {"and back where it was", [](DockLayout& l) { l.ToggleFloating(kHistory); },
         "0,40 905,385|910,60 1000,640|0,410 905,640|-"},
        {"ended by its owner", [](DockLayout& l) { l.Remove(kBook); }, "0,40 905,640|910,60 1000,640|-|-"},
        {"the partner is gone, the side stays", [](DockLayout& l) { l.SetShown(kNews, true); },
         "0,40 905,385|910,60 1000,640|-|0,410 905,640"},
    };
    for (const auto& row : rows) {
        row.run(layout);
        std::string places = Dump(layout.Arrange(kArea, kMetrics));
        for (const PaneId pane : {kHistory, kBook, kNews}) {
            const DockGroup* group = layout.GroupOf(pane);
            places += '|' + Dump(group && group->selected == pane ? group->content : DockRect{});
        }
        EXPECT_EQ(places, row.places) << row.step;
    }
}

TEST(DockLayout, KeepsInsideWhateverTheFramesSize) {
    for (const unsigned dpi : {96u, 144u, 192u})
        for (const bool centre : {true, false})
            for (int size = 0; size < 1600; size += 97) {
                DockLayout layout = ThreePanes();
                const DockRect area{0, 0, size, size};
                const DockRect rest = layout.Arrange(area, {dpi, 30, 30, centre});
                int covered = std::max(rest.Width(), 0) * std::max(rest.Height(), 0);
                for (const DockGroup& group : layout.Groups())
                    for (const DockRect& part : {group.bounds, group.splitter}) {
                        EXPECT_TRUE(part.Empty() || MovedInside(part, area) == part) << size;
                        covered += part.Width() * part.Height();
                    }
                EXPECT_EQ(covered, size * size) << size << " at " << dpi << (centre ? " with" : " without");
            }
}

TEST(DockLayout, FindsWhatTheMouseIsOn) {
    DockLayout layout = ThreePanes();
    layout.Move(kNews, {Kind::tabs, DockSide::left, kHistory});
    layout.Arrange(kArea, kMetrics);
    const struct {
        DockPoint point;
        const char* hit;
        const char* bookGoesTo;
    } rows[] = {
        {{10, 45}, "caption 3", "tabs 3"},   {{170, 45}, "float 3", "tabs 3"},
        {{190, 45}, "close 3", "tabs 3"},    {{50, 375}, "tab 2", "tabs 3"},
        {{150, 375}, "tab 3", "tabs 3"},     {{202, 200}, "splitter 3", "float"},
        {{500, 387}, "splitter 1", "float"}, {{500, 395}, "caption 1", "stay"},
        {{500, 200}, "nothing 0", "float"},  {{500, 50}, "nothing 0", "top"},
        {{30, 200}, "nothing 0", "left"},    {{980, 200}, "nothing 0", "right"},
        {{500, 620}, "nothing 0", "bottom"}, {{500, 20}, "nothing 0", "float"},
    };
    for (const auto& row : rows) {
        const std::string where = std::to_string(row.point.x) + ',' + std::to_string(row.point.y);
        EXPECT_EQ(Dump(layout.HitTest(row.point)), row.hit) << where;
        EXPECT_EQ(Dump(layout.TargetAt(row.point, kBook)), row.bookGoesTo) << where;
    }
    EXPECT_EQ(Dump(layout.PreviewOf(kBook, {Kind::side, DockSide::top})), "0,40 1000,290");
    EXPECT_EQ(Dump(layout.PreviewOf(kBook, {Kind::tabs, DockSide::left, kNews})), "0,40 200,640");
}

TEST(DockPlace, ComesBackAndIgnoresDamage) {
    DockLayout layout = ThreePanes();
    layout.Move(kNews, {Kind::tabs, DockSide::left, kHistory});
    for (const DockPane& pane : layout.Panes())
        EXPECT_EQ(PlaceFromText(PlaceText(layout.PlaceOf(pane.id))), layout.PlaceOf(pane.id)) << pane.caption;
    EXPECT_EQ(layout.PlaceOf(kHistory).tabWith, "News");

    const struct {
        const char* text;
        DockPlace place;
    } rows[] = {
        {"", {}},
        {R"({"side":"inside","extent":"9","tabWith":3,"floating":"yes"})", {}},
        {R"({"side":"top","extent":0})", {DockSide::top, 250, {}, false, {}}},
        {R"({"extent":99999999999,"floatLeft":1e9,"floatRight":10})", {}},
        {R"({"floating":true,"floatLeft":5,"floatTop":5,"floatRight":1,"floatBottom":9})",
         {DockSide::bottom, 250, {}, true, {}}},
        {R"({"extent":40,"floatLeft":-5,"floatTop":5,"floatRight":1,"floatBottom":9})",
         {DockSide::bottom, 40, {}, false, {-5, 5, 1, 9}}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(PlaceFromText(row.text), row.place) << row.text;
}

TEST(DockPlace, IsBroughtBackOntoTheMonitor) {
    constexpr DockRect monitor{0, 0, 1280, 760};
    const struct {
        DockRect rect;
        const char* moved;
    } rows[] = {
        {{100, 100, 400, 300}, "100,100 400,300"},
        {{-3000, 50, -2600, 350}, "0,50 400,350"},
        {{1200, 700, 1600, 900}, "880,560 1280,760"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Dump(MovedInside(row.rect, monitor)), row.moved);
}

} // namespace
} // namespace vesk
