#include "OutputFile.h"

#include "CommandError.h"
#include "Console.h"
#include "OutputNames.h"
#include "cutout/PictureEncoder.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

OutputFile::OutputFile(const QString &name)
    : m_name(name)
{
    if (name == "-"_L1) {
        m_standardOutput.open(QIODevice::WriteOnly);
        return;
    }
    // A device or a pipe would be replaced by a file of the same name.
    const QFileInfo present(name);
    if (present.exists() && !present.isFile())
        fail(u"it is not a regular file"_s);
    m_file = std::make_unique<QSaveFile>(name);
    if (!m_file->open(QIODevice::WriteOnly))
        fail(m_file->errorString());
}

bool OutputFile::isStandardOutput() const
{
    return m_file == nullptr;
}

void OutputFile::write(const QByteArray &bytes)
{
    QIODevice &device = m_file ? static_cast<QIODevice &>(*m_file) : m_standardOutput;
    if (device.write(bytes) != bytes.size())
        fail(device.errorString());
}

void OutputFile::write(const QImage &picture)
{
    QIODevice &device = m_file ? static_cast<QIODevice &>(*m_file) : m_standardOutput;
    const QString problem =
            PictureEncoder::encode(device, picture, OutputNames::format(m_name).toLatin1());
    if (!problem.isEmpty())
        fail(problem);
}

void OutputFile::commit()
{
    if (m_file && !m_file->commit())
        fail(m_file->errorString());
    if (!m_file && !Console::writeResult(m_standardOutput.data()))
        fail(u"its reader has gone, or its disk is full"_s);
}

QStringList OutputFile::commitAll(std::vector<OutputFile *> files)
{
    // Standard output fails more often than renaming does, and then no file must have appeared.
    std::stable_partition(files.begin(), files.end(),
                          [](const OutputFile *file) { return file->isStandardOutput(); });
    QStringList names;
    for (OutputFile *const file : files) {
        file->commit();
        if (!file->isStandardOutput())
            names.append(file->name());
    }
    return names;
}

void OutputFile::fail(const QString &reason) const
{
    const QString name = m_name == "-"_L1 ? u"standard output"_s : m_name;
    throw CommandError(ExitStatus::CannotWrite, u"%1 cannot be written: %2"_s.arg(name, reason));
}
