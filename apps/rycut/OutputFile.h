#pragma once

#include "RySafeFile.h"

#include <QBuffer>
#include <QImage>
#include <QStringList>

#include <memory>
#include <vector>

/**
 * One file that appears complete or not at all; "-" is standard output. Until commitAll() nothing
 * can be seen of it, and an object that goes away without leaves what was there before.
 *
 * Errors   thrown as CommandError, with the status for what cannot be written, or as
 *          std::bad_alloc.
 */
class OutputFile
{
public:
    /// Finds out whether the place can be written to.
    explicit OutputFile(const QString &name);

    QString name() const { return m_name; }

    void write(const QByteArray &bytes);
    /// In the format that the file's name asks for. Memory was too short for a null picture.
    void write(const QImage &picture);
    /// Makes all of them visible or none; returns the names of files.
    static QStringList commitAll(const std::vector<OutputFile *> &files);

private:
    QIODevice &device();
    bool isStandardOutput() const { return m_file == nullptr; }
    void finish();
    [[noreturn]] void fail(const QString &reason) const;

    QString m_name;
    std::unique_ptr<RySafeFile> m_file; // null for standard output
    QBuffer m_standardOutput;
};
