#include "hostframe/ui_adapter.h"

#include "hostframe/clip_connections.h"

namespace allplugins {

cGlimmerBlurUI::cGlimmerBlurUI() { effect.zoom = 1.0F; }

quantel::cPtr<quantel::iFactory::iClassInfo> cGlimmerBlurUI::classInfo() {
  return quantel::cClassInfo<cGlimmerBlurUI>::Make();
}

quantel::cGuid cGlimmerBlurUI::uiGuid() { return uiClassGuid; }

quantel::cGuid cGlimmerBlurUI::renderGuid() { return renderClassGuid; }

quantel::wstring cGlimmerBlurUI::moduleText() { return savedModuleText; }

void cGlimmerBlurUI::setInputs(quantel::cPtr<qplugin::iQpluginInputs> inputs) {
  ConnectClips(inputs, &sourceClip, &spreadClip, &effect);
  inputs.Reset();
}

void cGlimmerBlurUI::setParams(quantel::cPtr<qplugin::iQpluginParams> newParams) {
  params = newParams;
  effect.uiOwner = this;
  newParams.Reset();
}

void cGlimmerBlurUI::setResult(quantel::cPtr<qplugin::iQpluginUIResult> newResult) {
  result = newResult;
  newResult.Reset();
}

}  // namespace allplugins
