#pragma once

#include "framework/AbstractProperty.hpp"
#include "framework/PropertyBag.hpp"
#include "framework/Synchronizer.hpp"

#include <locale>
#include <string>

namespace FrameworkTest {

/// Owns a bag and the lock of the properties in it.
class BagOwner : public Quoril::Core::PropertyBagOwner {
 public:
    Quoril::Core::Synchronizer* getPropertySynchronizer() override { return &synchronizer_; }

 private:
    Quoril::Core::Synchronizer synchronizer_;
};

/// Counts what it is told.
class CountingObserver : public Quoril::Core::PropertyObserver {
 public:
    void valueChanged(const Quoril::Core::AbstractProperty& /*property*/) override { ++values; }
    void attributeChanged(const Quoril::Core::AbstractProperty& /*property*/) override {
        ++attributes;
    }

    int values = 0;
    int attributes = 0;
};

/// Makes a locale global that writes 1.234.567,5 and names true "yes", for its scope.
class CommaLocale {
 public:
    CommaLocale()
        : before_(std::locale::global(std::locale(std::locale::classic(), new Punctuation))) {}
    ~CommaLocale() { std::locale::global(before_); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

 private:
    class Punctuation : public std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
        std::string do_truename() const override { return "yes"; }
    };

    std::locale before_;
};

}  // namespace FrameworkTest
