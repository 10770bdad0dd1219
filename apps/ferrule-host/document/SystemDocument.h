#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

namespace ferrule {

// The forms system data is kept in: the raw 43,252-byte image, a .syx file of the model's
// data-set messages, or the settings as text (a name ending in .txt).
enum class DataFormat { Raw, Syx, Text };

// The system data a person works on: one model's data inside the whole image, where it came from
// (a file in one of the two forms, or the embedded default), and whether it has changed since.
class SystemDocument {
public:
    // The embedded default image.
    SystemDocument(int model, QByteArray header);

    // Reads a file in any form, checked whole before anything is used: a regular file, a raw
    // image of exactly 43,252 bytes, a .syx whose every message is good for the model, or a
    // text of the model's settings. Bytes a .syx or a text does not carry come from the default
    // image. nullopt and `error` (one line) on failure.
    static std::optional<SystemDocument> open(const QString& path, int model,
                                              const QByteArray& header, QString* error);
    // The form a file has by its name: .syx, .txt, or raw.
    static DataFormat formatForName(const QString& path);
    // The model a text file names in its model line, or 0 (not a text, none named, unreadable).
    static int textModel(const QString& path);

    int model() const { return model_; }
    const QByteArray& header() const { return header_; }
    const QByteArray& image() const { return image_; }
    const QString& path() const { return path_; }
    DataFormat format() const { return format_; }
    bool modified() const { return modified_; }
    // What the file's reading noticed but kept (a text's values outside their ranges), one
    // line each.
    const QStringList& warnings() const { return warnings_; }

    // Takes new image bytes (from the editor or the device); modified when they differ.
    void setImage(const QByteArray& image);
    // The file's bytes in a form.
    QByteArray encode(DataFormat format) const;
    // Whether the file was changed on disk by someone else since it was read or last saved:
    // empty when not, otherwise a sentence that says so. A file touched without a change of
    // its bytes has not changed.
    QString changedOnDisk() const;
    // Opened while another ferrule-host has unsaved changes to the file: saving goes elsewhere.
    bool readOnly() const { return readOnly_; }
    void setReadOnly(bool readOnly) { readOnly_ = readOnly; }
    // The file as this document last read or wrote it.
    struct DiskState {
        qint64 size = -1;
        QDateTime modified;
        QByteArray hash;
    };
    const DiskState& disk() const { return disk_; }
    // Takes changes kept from an earlier run: their image, unsaved, over the file as it was
    // when they were made, so that a save over a file changed since asks first.
    void recover(const QByteArray& image, const DiskState& disk);
    // Writes the document to its file in its form, atomically; false with the system's reason.
    bool save(QString* error);
    // Makes `path` the document's file, in `format`, and saves there.
    bool saveAs(const QString& path, DataFormat format, QString* error);

private:
    static DiskState diskState(const QString& path, const QByteArray& bytes);
    static QByteArray hashOf(const QByteArray& bytes);

    int model_;
    QByteArray header_;
    QByteArray image_;
    QString path_;
    DataFormat format_ = DataFormat::Raw;
    bool modified_ = false;
    bool readOnly_ = false;
    DiskState disk_;
    QStringList warnings_;
};

} // namespace ferrule
