#include "skin/SkinButtonRules.h"

#include <gtest/gtest.h>

TEST(ConvertedButtons, AreWhatLooksLikeAPushButton)
{
    for (const auto& [style, converts] : {std::pair(0U, true),
                                          {1U, true},
                                          {3U, false},
                                          {0x1003U, true},
                                          {0x1009U, true},
                                          {7U, false},
                                          {0x1007U, false},
                                          {0xBU, false}})
        EXPECT_EQ(ConvertsButton(style), converts) << style;
    EXPECT_EQ(ConvertedStyle(0x50011006), 0x5001101BU);
    EXPECT_TRUE(IsRadioData(ButtonData(0x1009)) && IsCheckData(ButtonData(0x1006)));
    EXPECT_FALSE(IsRadioData(ButtonData(0x1003)) || IsCheckData(ButtonData(1)));
    EXPECT_TRUE(IsDefaultData(ButtonData(1)) && !IsDefaultData(ButtonData(0)));
}

TEST(ConvertedButtons, FindTheirGroup)
{
    const std::vector<bool> starts = {false, true, false, false, true, false};
    const std::pair<size_t, size_t> expected[] = {{0, 1}, {1, 4}, {1, 4}, {1, 4}, {4, 6}, {4, 6}};
    for (size_t i = 0; i < starts.size(); ++i)
        EXPECT_EQ(GroupAround(starts, i), expected[i]) << i;
}
