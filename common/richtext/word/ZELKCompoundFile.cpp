#include "ZELKCompoundFile.h"

#include <QIODevice>

#include <gsf/gsf-doc-meta-data.h>
#include <gsf/gsf-meta-names.h>
#include <gsf/gsf-msole-utils.h>
#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-output-impl.h>
#include <gsf/gsf-output.h>

namespace {

/// The device as the library sees it. Of a device that failed it learns nothing, as it would try again for
/// ever; nor of a file that is given up, which it makes whole none the less.
struct DeviceOutput
{
    GsfOutput base;
    QIODevice *device; ///< none: what is written is lost
    bool hasFailed;
};

gboolean noteWhether(bool isDone, GsfOutput *output)
{
    auto *self = reinterpret_cast<DeviceOutput *>(output);
    if (!isDone) {
        self->hasFailed = true;
        self->device = nullptr;
    }
    return TRUE;
}

gboolean writeToDevice(GsfOutput *output, size_t count, const guint8 *bytes)
{
    QIODevice *device = reinterpret_cast<DeviceOutput *>(output)->device;
    const auto size = qint64(count);
    return noteWhether(!device || device->write(reinterpret_cast<const char *>(bytes), size) == size, output);
}

gboolean seekInDevice(GsfOutput *output, gsf_off_t offset, GSeekType whence)
{
    QIODevice *device = reinterpret_cast<DeviceOutput *>(output)->device;
    if (!device)
        return TRUE;
    const qint64 base = whence == G_SEEK_CUR ? device->pos() : whence == G_SEEK_END ? device->size() : 0;
    return noteWhether(device->seek(base + offset), output);
}

gboolean leaveDeviceOpen(GsfOutput * /*output*/)
{
    return TRUE;
}

void initClass(void *memory, void * /*data*/)
{
    auto *outputClass = static_cast<GsfOutputClass *>(memory);
    outputClass->Write = writeToDevice;
    outputClass->Seek = seekInDevice;
    outputClass->Close = leaveDeviceOpen;
}

GType deviceOutputType()
{
    static const GType type = [] {
        const GTypeInfo info{sizeof(GsfOutputClass), nullptr, nullptr, initClass, nullptr, nullptr,
                             sizeof(DeviceOutput),   0,       nullptr, nullptr};
        return g_type_register_static(GSF_OUTPUT_TYPE, "ZELKDeviceOutput", &info, GTypeFlags(0));
    }();
    return type;
}

struct Release
{
    void operator()(void *object) const { g_object_unref(object); }
};

template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

const guint8 *raw(QByteArrayView bytes)
{
    return reinterpret_cast<const guint8 *>(bytes.data());
}

void addText(GsfDocMetaData &data, const char *name, const QString &text)
{
    if (text.isEmpty())
        return;
    GValue value = G_VALUE_INIT;
    g_value_init(&value, G_TYPE_STRING);
    g_value_set_string(&value, text.toUtf8().constData());
    // The library frees both.
    gsf_doc_meta_data_insert(&data, g_strdup(name),
                             static_cast<GValue *>(g_boxed_copy(G_TYPE_VALUE, &value)));
    g_value_unset(&value);
}

} // namespace

struct ZELKCompoundFile::Parts
{
    DeviceOutput &output() const { return *reinterpret_cast<DeviceOutput *>(device.get()); }
    /// Whether the library did what was asked for, and the device everything so far.
    bool isDone(bool byLibrary) const { return byLibrary && !output().hasFailed; }

    Owned<GsfOutput> device;
    Owned<GsfOutfile> file;
    Owned<GsfOutput> stream;
};

ZELKCompoundFile::ZELKCompoundFile(QIODevice &device, QByteArrayView classIdentifier)
    : m_parts(std::make_unique<Parts>())
{
    m_parts->device.reset(static_cast<GsfOutput *>(g_object_new(deviceOutputType(), nullptr)));
    m_parts->output().device = &device;
    m_parts->file.reset(gsf_outfile_msole_new(m_parts->device.get()));
    gsf_outfile_msole_set_class_id(GSF_OUTFILE_MSOLE(m_parts->file.get()), raw(classIdentifier));
}

ZELKCompoundFile::~ZELKCompoundFile()
{
    m_parts->output().device = nullptr;
    m_parts->stream.reset();
    m_parts->file.reset();
}

bool ZELKCompoundFile::beginStream(const char *name)
{
    m_parts->stream.reset(gsf_outfile_new_child(m_parts->file.get(), name, FALSE));
    return m_parts->isDone(m_parts->stream != nullptr);
}

bool ZELKCompoundFile::append(QByteArrayView bytes)
{
    return m_parts->isDone(gsf_output_write(m_parts->stream.get(), size_t(bytes.size()), raw(bytes)));
}

bool ZELKCompoundFile::replaceBeginning(QByteArrayView bytes)
{
    GsfOutput *stream = m_parts->stream.get();
    return gsf_output_seek(stream, 0, G_SEEK_SET) && append(bytes) && gsf_output_seek(stream, 0, G_SEEK_END);
}

bool ZELKCompoundFile::endStream()
{
    const bool isWhole = gsf_output_close(m_parts->stream.get());
    m_parts->stream.reset();
    return m_parts->isDone(isWhole);
}

bool ZELKCompoundFile::addSummary(const QString &title, const QString &application)
{
    const Owned<GsfDocMetaData> data(gsf_doc_meta_data_new());
    addText(*data, GSF_META_NAME_TITLE, title);
    addText(*data, GSF_META_NAME_GENERATOR, application);
    if (gsf_doc_meta_data_size(data.get()) == 0)
        return true;
    return beginStream("\005SummaryInformation") &&
           gsf_doc_meta_data_write_to_msole(data.get(), m_parts->stream.get(), FALSE) && endStream();
}

bool ZELKCompoundFile::finish()
{
    return m_parts->isDone(gsf_output_close(GSF_OUTPUT(m_parts->file.get())));
}
