// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/pybind11.h>

#include <QString>
#include <QStringList>

#include <pybind11/stl.h>

namespace pybind11::detail
{

/// A Python str is a QString. Lone surrogates, which a path on disk may bring, survive both ways.
template<>
struct type_caster<QString>
{
    PYBIND11_TYPE_CASTER(QString, const_name("str"));

    bool load(handle source, bool)
    {
        if (!source || !PyUnicode_Check(source.ptr()))
            return false;
        const auto bytes =
            reinterpret_steal<object>(PyUnicode_AsEncodedString(source.ptr(), "utf-16-le", "surrogatepass"));
        if (!bytes)
        {
            PyErr_Clear();
            return false;
        }
        const char* const data = PyBytes_AsString(bytes.ptr());
        const auto size = static_cast<int>(PyBytes_Size(bytes.ptr()) / 2);
        value = QString(size, Qt::Uninitialized);
        memcpy(value.data(), data, static_cast<size_t>(size) * 2);
        return true;
    }

    static handle cast(const QString& text, return_value_policy, handle)
    {
        int order = -1;
        return PyUnicode_DecodeUTF16(reinterpret_cast<const char*>(text.utf16()),
                                     static_cast<Py_ssize_t>(text.size()) * 2, "surrogatepass", &order);
    }
};

template<>
struct type_caster<QStringList> : list_caster<QStringList, QString>
{
};

} // namespace pybind11::detail
