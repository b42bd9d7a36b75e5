#include <gtest/gtest.h>

#include <utility>

#include "text/base64.h"

namespace {

TEST(Base64, HasTheLettersAndThePaddingOfItsStandard) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},        {"f", "Zg=="},        {"fo", "Zm8="},
        {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"\xff\xfe\xfd", "//79"}};
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(text::base64_of(bytes), text);
    }
}

}  // namespace
