// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Any bytes as a file that the tools read; the first byte chooses which kind. Asserted:
//  - a reader answers, or throws the one kind of error that its program shows, with a text;
//  - tags, written to a file, are read as the same tags;
//  - registers are of their type's range, with a value each, and no more together than was asked;
//  - a memory image is as large as before, and is the same after saving and loading.

#include "fuzz/support/tool_catalogue.h"
#include "tools/exchange/recording.h"
#include "tools/fxsim/plc/memory_image.h"
#include "tools/fxsim/plc/script_program.h"
#include "tools/library/register_file.h"
#include "tools/service/configuration.h"
#include "tools/tags/foreign_tags.h"

#include <sys/mman.h>
#include <unistd.h>

using namespace fxtools;

namespace {

constexpr int mostRegisters = 32;

// A file without a disk: its path.
QString fileOf(const QByteArray& content)
{
    static const int descriptor = memfd_create("input", 0);
    require(ftruncate(descriptor, 0) == 0 &&
                pwrite(descriptor, content.constData(), static_cast<std::size_t>(content.size()),
                       0) == content.size(),
            "no room for the input");
    return QStringLiteral("/proc/self/fd/%1").arg(descriptor);
}

void readTagsTwice(const QVector<Tag>& tags)
{
    if (tags.isEmpty())
        return;
    const TagFile again =
        readAgain([&] { return readTagFile(fileOf(tagFileText(tags)), catalogue()); });
    require(again.errors() == 0 && again.tags.size() == tags.size(), "tags are lost in their file");
    for (int i = 0; i < tags.size(); ++i) {
        for (const TagDifference& difference : differences(tags[i], again.tags[i]))
            require(difference.title.toStdString() + " changes in a tag's file");
    }
}

void readRegisters(const QString& path)
{
    for (const RegisterRun& run : readRegisterFile(path, catalogue(), mostRegisters).runs) {
        const RegisterRange& range = run.range;
        require(range.count == run.values.size() && range.count <= mostRegisters &&
                    range.first >= range.type.lowest &&
                    range.first + range.count - 1 <= range.type.highest,
                "registers that are not there");
    }
}

void readImage(const QByteArray& content)
{
    QByteArray image(fxsim::addressableBytes, '\0');
    fxsim::applyHex(content, image);
    require(image.size() == fxsim::addressableBytes, "an image of another size");
    QByteArray again(fxsim::addressableBytes, '\0');
    readAgain([&] { fxsim::applyHex(fxsim::hexText(image), again); });
    require(again == image, "an image changes when it is saved");
}

void runScript(const QByteArray& content)
{
    fxsim::PlcMemory memory;
    const std::unique_ptr<fxsim::Program> program = fxsim::parseScript(content, memory, 1);
    program->start(memory);
    for (const int elapsedMs : {0, 1, 999, 1000})
        program->advance(memory, elapsedMs);
}

void readAs(int kind, const QByteArray& content)
{
    switch (kind) {
    case 0:
        readTagsTwice(readTagFile(fileOf(content), catalogue()).tags);
        break;
    case 1:
        readTagsTwice(importTags(fileOf(content), {}, catalogue()).tags);
        break;
    case 2:
        readRegisters(fileOf(content));
        break;
    case 3:
        readRecording(fileOf(content));
        break;
    case 4:
        readConfiguration(fileOf(content));
        break;
    case 5:
        readImage(content);
        break;
    default:
        runScript(content);
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    readOneOf(7, readAs, bytes, byteCount);
    return 0;
}
