// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Tags in the forms of other programs:
//
//   the tag list of a SCADA server     Tag Name,Address,Data Type,...,Scaling,Raw Low,...
//   the device comments of a program   Device,Label,Comment
//
// What one side cannot say is told, never dropped in silence.

#pragma once

#include "tools/tags/tag_file.h"

namespace fxtools {

enum class ForeignForm
{
    Scada,
    Comments,
};

std::optional<ForeignForm> foreignFormNamed(const QString& name);  // "scada" or "comments"

// Without a form, the one whose columns the file has. A remark is what was not taken over, an error
// a row that was left out. Throws Failure if the file cannot be read or has another form.
TagFile importTags(const QString& path, std::optional<ForeignForm> form,
                   const RegisterCatalogue& catalogue);

// The remarks say what an import of the text would not bring back.
struct ExportedTags
{
    QByteArray text;
    QVector<TagRemark> remarks;
};
ExportedTags exportTags(const QVector<Tag>& tags, ForeignForm form,
                        const RegisterCatalogue& catalogue);

}  // namespace fxtools
