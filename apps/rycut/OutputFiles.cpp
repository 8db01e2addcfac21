#include "OutputFiles.h"

#include <algorithm>

OutputFiles::OutputFiles(const QStringList &names, const QString &report)
{
    for (const QString &name : names)
        m_files.emplace_back(name);
    if (!report.isEmpty())
        m_report = std::make_unique<OutputFile>(report);
}

OutputFile &OutputFiles::file(const QString &name)
{
    return *std::find_if(m_files.begin(), m_files.end(),
                         [&name](const OutputFile &file) { return file.name() == name; });
}

void OutputFiles::writeReport(const std::function<QByteArray()> &report)
{
    if (m_report)
        m_report->write(report());
}

QStringList OutputFiles::commitAll()
{
    std::vector<OutputFile *> files;
    for (OutputFile &file : m_files)
        files.push_back(&file);
    if (m_report)
        files.push_back(m_report.get());
    return OutputFile::commitAll(files);
}

void OutputFiles::commitReport()
{
    if (m_report)
        OutputFile::commitAll({m_report.get()});
}
