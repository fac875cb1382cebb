#pragma once

#include "ZELKDictionary.h"

#include <QByteArray>

/// The body of a form that a browser would send with a file in it (multipart/form-data).
namespace ZELKMultipartBody {

/// One part a key, in the dictionary's order, all text as UTF-8: a text as it stands; the address of a local
/// file as that file's contents, empty where it cannot be read; data as a file named after its key. A value
/// of any other kind is a boundary and nothing more, which is meant: the form still says that it was there.
QByteArray make(const ZELKDictionary &dictionary, const QString &boundary);

} // namespace ZELKMultipartBody
