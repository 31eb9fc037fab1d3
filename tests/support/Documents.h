#pragma once

#include <memory>
#include <string>
#include <vector>

#include "document/PaintManager.h"
#include "platform/foundation/values/NSData.h"

/// Bytes of a document that make_documents.py left in the build folder, for example "red".
std::shared_ptr<NSData> madeDocumentData(const std::string& name);

/// The document in it; fails the running test when it cannot be decoded.
std::shared_ptr<PaintManager> madeDocument(const std::string& name);

/// Names of documents that together paint with every class and effect.
std::vector<std::string> paintedDocuments();

/// The top-level draw with that title; fails the running test when there is none.
std::shared_ptr<DrawBase> drawTitled(const PaintManager& document, const std::string& title);
