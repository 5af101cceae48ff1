#include <gtest/gtest.h>

#include "Bench.h"
#include "catalogue/clsListItem.h"
#include "catalogue/modLists_Lists.h"
#include "shared/modGlobal.h"

// The reference is built once, when the component is loaded. Linked here, not reached through the DLL.
namespace {

struct PlainRecord {
    std::wstring Text, Category, Description, DragDrop, SelectText, InsertText, UpdateText, DeleteText, ExecuteText;
    long Id, List, Type;
};

}  // namespace

TEST(CatalogueBench, BuildingIt) {
    modGlobal::Main();
    std::vector<PlainRecord> source;
    for (const auto& item : modGlobal::Catalogue()) {
        source.push_back({item->Text(), item->Category(), item->Description(), item->DragDrop(), item->SelectText(),
                          item->InsertText(), item->UpdateText(), item->DeleteText(), item->ExecuteText(), item->Id(),
                          item->list(), item->DBType()});
    }
    ASSERT_EQ(283U, source.size());
    // Ten times: one alone is over before the clock ticks twice.
    constexpr int times = 10;
    Compare(
        {"building the catalogue", source.size(), 3.0},
        [] {
            return Took([] {
                       for (int at = 0; at < times; ++at) modGlobal::Main();
                   }) /
                   times;
        },
        [&] {
            return Took([&] {
                       for (int at = 0; at < times; ++at) {
                           std::vector<PlainRecord> copy;
                           for (const PlainRecord& record : source) copy.push_back(record);
                           EXPECT_EQ(source.size(), copy.size());
                       }
                   }) /
                   times;
        });
}
