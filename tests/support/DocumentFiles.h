#pragma once

#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "document/SystemDocument.h"

#include <QDateTime>
#include <QFile>

// Files of system data as the librarian's tests make and read them.

inline QByteArray readFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

// Gives the file a modification time `seconds` from now, as a later write would.
inline bool touch(const QString& path, int seconds) {
    QFile f(path);
    return f.open(QIODevice::ReadWrite) &&
           f.setFileTime(QDateTime::currentDateTime().addSecs(seconds),
                         QFileDevice::FileModificationTime);
}

// `image` with the byte at `index` one step on, as an edit leaves it.
inline QByteArray changed(QByteArray image, int index) {
    image[index] = char((image[index] + 1) & 0x7F);
    return image;
}

// Saves the model's data with values in the middle of most ranges, so that a knob can step
// either way; gives back `path`, or nothing when it could not be saved.
inline QString saveMidRange(const QString& path, int model, ferrule::DataFormat format) {
    ferrule::SystemDocument doc(model, ferrule::Sysex::defaultHeader(model));
    QByteArray image = doc.image();
    for (int i = ferrule::modelStretch(model).start; i < ferrule::kImageSize; ++i)
        image[i] = char(5);
    doc.setImage(image);
    QString error;
    return doc.saveAs(path, format, &error) ? path : QString();
}
