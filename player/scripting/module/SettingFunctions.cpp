// SPDX-License-Identifier: MIT
#include "scripting/module/ScriptModule.h"

#include "host/Settings.h"
#include "scripting/ScriptHost.h"

#include <QVariant>

#include <utility>
#include <variant>
#include <vector>

namespace py = pybind11;

namespace
{

using ScriptModule::OnGui;
using ScriptModule::Words;

/// A setting's value as Python has it; a bool is no number there, and must be tried first.
using ScriptValue = std::variant<bool, int64_t, double, QString>;

ScriptValue FromVariant(const QVariant& value)
{
    switch (static_cast<QMetaType::Type>(value.type()))
    {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
        return static_cast<int64_t>(value.toInt());
    case QMetaType::Double:
        return value.toDouble();
    default:
        return value.toString();
    }
}

QVariant ToVariant(const ScriptValue& value)
{
    if (const bool* const flag = std::get_if<bool>(&value))
        return *flag;
    if (const int64_t* const number = std::get_if<int64_t>(&value))
        return QVariant::fromValue<qlonglong>(*number);
    if (const double* const number = std::get_if<double>(&value))
        return *number;
    return std::get<QString>(value);
}

void CheckName(const QString& name)
{
    if (!Settings::Value(name).isValid())
        throw std::invalid_argument(Words(QStringLiteral("there is no setting \"%1\"").arg(name)));
}

ScriptValue GetSetting(const QString& name)
{
    return OnGui(
        [name](ScriptHost&)
        {
            CheckName(name);
            return FromVariant(Settings::Value(name));
        });
}

ScriptValue FromPython(const QString& name, const py::object& value)
{
    // Asked in this order, since a bool is an int to Python; nothing is converted, not even None to False.
    if (py::isinstance<py::bool_>(value))
        return value.cast<bool>();
    if (py::isinstance<py::int_>(value))
        return value.cast<int64_t>();
    if (py::isinstance<py::float_>(value))
        return value.cast<double>();
    if (py::isinstance<py::str>(value))
        return value.cast<QString>();
    throw py::type_error(Words(QStringLiteral("%1 takes a bool, a number or a text").arg(name)));
}

void SetSetting(const QString& name, const py::object& object)
{
    const ScriptValue value = FromPython(name, object);
    OnGui(
        [name, value](ScriptHost& host)
        {
            CheckName(name);
            const QString complaint = Settings::SetValue(name, ToVariant(value));
            if (!complaint.isEmpty())
                throw std::invalid_argument(Words(QStringLiteral("%1: %2").arg(name, complaint)));
            host.ApplySetting(name);
        });
}

py::dict ListSettings()
{
    const auto values = OnGui(
        [](ScriptHost&)
        {
            std::vector<std::pair<QString, ScriptValue>> all;
            for (const QString& name : Settings::Names())
                all.emplace_back(name, FromVariant(Settings::Value(name)));
            return all;
        });
    py::dict result;
    for (const auto& [name, value] : values)
        result[py::cast(name)] = value;
    return result;
}

} // namespace

void ScriptModule::AddSettings(py::module_& module)
{
    module.def("settings", &ListSettings, "The user's settings: a dict of their values by name.");
    module.def("setting", &GetSetting, py::arg("name"), "The value of the setting called name.");
    module.def("set_setting", &SetSetting, py::arg("name"), py::arg("value"),
               "Gives the setting called name a value. Enumerations are numbers, colours \"#AARRGGBB\". What "
               "the preferences mark with \"requires restart\" acts with the next start.");
}
