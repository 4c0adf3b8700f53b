// tests/client/windows/dialog_resources_test.cpp
#include "client/windows/dialog_resources.h"

#include <map>
#include <set>

#include <gmock/gmock.h>

namespace {

TEST(DialogResources, DescribeTheSettingsDialogWithEveryControlOfItsKind)
{
    const pavex::DialogResource* resource = pavex::FindDialogResource(2070);
    ASSERT_NE(resource, nullptr);
    std::map<int, std::string> kinds;
    for (const pavex::ControlRow& row : resource->controls)
        kinds[row.id] = pavex::KindName(row.kind);
    const std::map<int, std::string> expected = {
        {1, "button"},   {2, "button"},   {3382, "check"}, {3383, "list"},  {3384, "button"}, {3385, "button"},
        {3386, "text"},  {3387, "text"},  {3388, "check"}, {3389, "check"}, {3390, "check"},  {3391, "check"},
        {3392, "check"}, {3393, "check"}, {3394, "text"},  {3395, "edit"},  {3396, "text"},   {3397, "button"},
        {3398, "text"},  {3399, "text"},  {3400, "text"}};
    EXPECT_EQ(kinds, expected);
    EXPECT_EQ(resource->defaultButton, 1);
    EXPECT_EQ(resource->cancelButton, 2);
}

TEST(DialogResources, NameEachControlDifferently)
{
    std::set<std::string> names;
    const pavex::DialogResource* resource = pavex::FindDialogResource(2070);
    for (const pavex::ControlRow& row : resource->controls)
        names.insert(row.name);
    EXPECT_EQ(names.size(), resource->controls.size());
}

TEST(DialogResources, KnowNoOtherNumber)
{
    EXPECT_EQ(pavex::FindDialogResource(2071), nullptr);
}

}  // namespace
