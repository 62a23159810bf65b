#include "inventory/watched_xml_parser.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>

namespace Orvane {

namespace {

void report(xmlParserCtxt& parser, const xmlParserInput& document) {
  parser.wellFormed = 0;
  xmlResetError(&parser.lastError);
  parser.lastError.domain = XML_FROM_PARSER;
  parser.lastError.code = XML_ERR_ENTITY_LOOP;
  parser.lastError.level = XML_ERR_FATAL;
  parser.lastError.message = xmlMemStrdup("Too many references to parameter entities\n");
  parser.lastError.file = document.filename == nullptr ? nullptr : xmlMemStrdup(document.filename);
  parser.lastError.line = document.line;
  parser.lastError.int2 = document.col;
}

xmlEntityPtr getParameterEntity(void* context, const xmlChar* name) {
  constexpr unsigned long kHarmless = 8000;
  constexpr unsigned long kPerByte = 8;
  auto& parser = *static_cast<xmlParserCtxt*>(context);
  const xmlParserInput& document = *parser.inputTab[0];
  const auto bytesRead =
      document.consumed + static_cast<unsigned long>(document.cur - document.base);
  if (parser.nbentities < kHarmless || parser.nbentities < kPerByte * bytesRead) {
    return xmlSAX2GetParameterEntity(context, name);
  }
  if (parser.wellFormed == 1) report(parser, document);
  xmlStopParser(&parser);
  return nullptr;
}

}  // namespace

void WatchedXmlParser::initialize_context() {
  xmlpp::DomParser::initialize_context();
  context_->sax->getParameterEntity = getParameterEntity;
}

}  // namespace Orvane
