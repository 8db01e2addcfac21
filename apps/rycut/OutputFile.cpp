#include "OutputFile.h"

#include "CommandError.h"
#include "Console.h"
#include "OutputNames.h"
#include "cutout/PictureEncoder.h"

#include <new>

using namespace Qt::StringLiterals;

OutputFile::OutputFile(const QString &name)
    : m_name(name)
{
    if (name == "-"_L1) {
        m_standardOutput.open(QIODevice::WriteOnly);
        return;
    }
    m_file = std::make_unique<RySafeFile>(name);
    if (!m_file->open())
        fail(m_file->errorString());
}

QIODevice &OutputFile::device()
{
    return m_file ? static_cast<QIODevice &>(*m_file) : m_standardOutput;
}

void OutputFile::write(const QByteArray &bytes)
{
    if (device().write(bytes) != bytes.size())
        fail(device().errorString());
}

void OutputFile::write(const QImage &picture)
{
    if (picture.isNull())
        throw std::bad_alloc();
    const QString problem =
            PictureEncoder::encode(device(), picture, OutputNames::format(m_name).toLatin1());
    if (problem.isEmpty())
        return;
    finish(); // the encoder does not know why it could not write
    fail(problem);
}

void OutputFile::finish()
{
    if (m_file && !m_file->finish())
        fail(m_file->errorString());
}

QStringList OutputFile::commitAll(const std::vector<OutputFile *> &files)
{
    std::vector<RySafeFile *> onDisk;
    QStringList names;
    for (OutputFile *const file : files) {
        file->finish();
        if (file->isStandardOutput())
            continue;
        onDisk.push_back(file->m_file.get());
        names.append(file->m_name);
    }
    // What went out cannot be taken back, but fails more often than a change of names.
    for (const OutputFile *const file : files) {
        if (file->isStandardOutput() && !Console::writeResult(file->m_standardOutput.data()))
            file->fail(u"its reader has gone, or its disk is full"_s);
    }
    const RySafeFile *const failed = RySafeFile::commitAll(onDisk);
    for (const OutputFile *const file : files) {
        if (failed && file->m_file.get() == failed)
            file->fail(failed->errorString());
    }
    return names;
}

void OutputFile::fail(const QString &reason) const
{
    const QString name = m_name == "-"_L1 ? u"standard output"_s : m_name;
    throw CommandError(ExitStatus::CannotWrite, u"%1 cannot be written: %2"_s.arg(name, reason));
}
