#pragma once

#include <string>
#include <typeinfo>
#include <utility>

#include <Poco/Exception.h>
#include <gtest/gtest.h>

namespace Support {

/// Expects exactly that class of exception, with exactly that message.
template <class Exception, class Function>
void expectThrow(const std::string& message, Function&& function) {
    try {
        std::forward<Function>(function)();
        ADD_FAILURE() << "nothing was thrown instead of: " << message;
    } catch (const Poco::Exception& error) {
        EXPECT_EQ(typeid(error), typeid(Exception)) << error.displayText();
        EXPECT_EQ(error.message(), message);
    }
}

}  // namespace Support
