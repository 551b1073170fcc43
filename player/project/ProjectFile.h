// SPDX-License-Identifier: MIT
#pragma once

#include "project/ProjectContent.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

/// The project file: JSON with a version, described in docs/project-file.md.
namespace ProjectFile
{

/// The version that Write() writes, and the latest that Read() reads.
constexpr int Version = 1;
/// The suffix of project files, without the dot.
constexpr const char* Suffix = "torvalen";

/// @p content as a document. Paths below its source root are written relative to that too, with
/// @p projectFolder for Settings::PROJECT_DIRECTORY_VAR.
QJsonObject ToJson(const ProjectContent& content, const QString& projectFolder);
/// The content that @p text holds, the text of a project file that lies in @p projectFolder. None if it isn't
/// a sound project; @p error then says what is wrong and at which place of the text.
std::optional<ProjectContent> FromText(const QByteArray& text, const QString& projectFolder, QString* error);
/// The same of a document that is parsed already.
std::optional<ProjectContent> FromJson(const QJsonObject& document, const QString& projectFolder,
                                       QString* error);

/// Reads the file at @p path. The error begins with the path.
std::optional<ProjectContent> Read(const QString& path, QString* error);
/// Writes the file at @p path whole or not at all.
bool Write(const ProjectContent& content, const QString& path, QString* error);

} // namespace ProjectFile
