// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <functional>
#include <map>
#include <memory>
#include <string>

/// The test classes of a program, by name.
using TestFactories = std::map<std::string, std::function<std::unique_ptr<QObject>()>>;

TestFactories& RegisteredTests();

/// Registers @p Test while the program loads; one stands in the source of each test class.
template<typename Test>
struct TestRegistration
{
    TestRegistration()
    {
        RegisteredTests()[Test::staticMetaObject.className()] = [] { return std::make_unique<Test>(); };
    }
};
