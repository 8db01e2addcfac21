#pragma once

#include "RyConfigItem.h"
#include "RyImageCutterExport.h"
#include "RySettings.h"
#include "RySingleton.h"

#include <QColor>
#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QVariant>

/**
 * What a user of a photo editor sets once for all pictures. The library itself never reads it.
 *
 * File     group "ImageCutter" of the file that RySettings describes, errors included.
 * Sharing  the colours are one entry: of two programs that change colours at once, the later wins.
 * Threads  the host's thread.
 */
class RYIMAGECUTTER_EXPORT RyImageCutterSettings : public RySettings,
                                                   public RySingleton<RyImageCutterSettings>
{
    Q_OBJECT

public:
    static const QString group;                 ///< "ImageCutter"
    static const QString backgroundColorsKey;   ///< "backgroundColors"
    static const QString debugFolderKey;        ///< "dbgFolder"
    static const QString maximalImageLengthKey; ///< "maxFotoLength", as files have it
    static const QString listSeparator;         ///< ",", for hosts that show a list in one line
    static constexpr QLatin1StringView defaultDebugFolder{"DEBUG"};
    static constexpr int defaultMaximalImageLength = 1200;

    /// Offered to the user for what is behind a cut-out object. An element that a file has in a
    /// form other than a colour's or its name's is an invalid colour.
    QList<QColor> backgroundColors() const;
    /// Replaces one colour and saves, even if it is that colour already: the file may have another
    /// one by now. Nothing happens when there is no such index.
    void setBackgroundColors(const int &index, const QColor &color);

    /// Where diagnostic output goes; a relative name is relative to the current folder.
    QString debugFolder() const { return m_debugFolder.value(); }
    void setDebugFolder(const QString &folder);

    /// Longest side, in pixels, that pictures are reduced to for cutting. Whatever whole number a
    /// file or a caller gives; those below 1 are for the host to refuse.
    int maximalImageLength() const { return m_maximalImageLength.value(); }
    void setMaximalImageLength(const int &length);

    /// Replaces all values by those of the file, even changed ones that could not be saved.
    void loadSettings() override;
    /// The setters call it.
    void saveSettings() override;

private:
    friend class RySingleton<RyImageCutterSettings>;
    RyImageCutterSettings();

    QList<QVariant> m_backgroundColors; // each one holds a QColor
    RyConfigItem<QString> m_debugFolder{defaultDebugFolder, defaultDebugFolder, debugFolderKey};
    RyConfigItem<int> m_maximalImageLength{defaultMaximalImageLength, defaultMaximalImageLength,
                                           maximalImageLengthKey};
    quintptr m_areBackgroundColorsChanged = 0; // since they were loaded or saved
};
