// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What is legal in a tag file and still not what somebody means.

#pragma once

#include "tools/tags/tag_file.h"

namespace fxtools {

// Registers that two tags share, writes that would hit others, scaling that loses values, limits of
// what is never written or that no value has.
QVector<TagRemark> checkTags(const QVector<Tag>& tags, const RegisterCatalogue& catalogue);

// Values that no reply brings whole, in frames of so many words: these are errors.
QVector<TagRemark> checkReplies(const QVector<Tag>& tags, int wordsPerFrame);

}  // namespace fxtools
