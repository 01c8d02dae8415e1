// The manifest loader on arbitrary bytes. A document it accepts must survive
// a save and a second load unchanged: what the store writes, it must read.
#include "FuzzInput.h"

#include "model/Model.h"
#include "model/Serializer.h"
#include "platform/ErrorHolder.h"

#include <cstdio>
#include <cstdlib>

using namespace LibraryBrowser;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes = Fuzz::bytesOf(data, size);
    ErrorHolder signatureErrors;
    Serializer::getModelSignatureFromByteArray(bytes, signatureErrors);

    ModelPtr model = Model::createModel();
    ErrorHolder errors;
    const bool loaded = model->loadFromBytes(bytes, errors);
    if (loaded == errors.hasError()) {
        std::fprintf(stderr, "load answered %d with %zu errors\n", int(loaded), errors.errors().size());
        std::abort();
    }
    if (!loaded)
        return 0;

    const QByteArray saved = Serializer::saveToByteArray(*model, Model::Compact);
    ModelPtr again = Model::createModel();
    ErrorHolder againErrors;
    if (!again->loadFromBytes(saved, againErrors)) {
        std::fprintf(stderr, "a saved manifest does not load again: %s\n%s\n", againErrors.message().c_str(),
                     saved.constData());
        std::abort();
    }
    if (Serializer::saveToByteArray(*again, Model::Compact) != saved) {
        std::fprintf(stderr, "a manifest changes on its second save:\n%s\n", saved.constData());
        std::abort();
    }
    return 0;
}
