#pragma once

#include <QBuffer>
#include <QImage>
#include <QSaveFile>
#include <QStringList>

#include <memory>
#include <vector>

/**
 * One file that appears complete or not at all; "-" is standard output. Until commit() nothing
 * can be seen of it, and an object that goes away without leaves what was there before.
 *
 * Errors   thrown as CommandError, with the status for what cannot be written.
 */
class OutputFile
{
public:
    /// Finds out whether the place can be written to.
    explicit OutputFile(const QString &name);

    QString name() const { return m_name; }
    bool isStandardOutput() const;

    void write(const QByteArray &bytes);
    /// In the format that the file's name asks for.
    void write(const QImage &picture);
    void commit();
    /// Makes all of them visible; returns the names of files.
    static QStringList commitAll(std::vector<OutputFile *> files);

private:
    [[noreturn]] void fail(const QString &reason) const;

    QString m_name;
    std::unique_ptr<QSaveFile> m_file; // null for standard output
    QBuffer m_standardOutput;
};
