// SPDX-License-Identifier: BSD-3-Clause
// The order of virtual operations, by slot number: a host built elsewhere calls by place and
// not by name. A class with a virtual destructor has two slots for it here.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "hostframe/interfaces/iqplugin.h"
#include "hostframe/interfaces/module.h"
#include "hostframe/interfaces/plugin_render.h"
#include "hostframe/interfaces/plugin_ui.h"
#include "hostframe/interfaces/ui_result.h"

namespace {

constexpr int kDestructorSlots = 2;

// The slot of a virtual operation, from its pointer to member: the offset in the table plus
// one, in the form that this platform's compilers use.
template <class Class, class Function>
int Slot(Function Class::*operation) {
  static_assert(sizeof(operation) == 2 * sizeof(void*));
  std::ptrdiff_t words[2];
  std::memcpy(words, &operation, sizeof words);
#if defined(__aarch64__)
  return static_cast<int>(words[0] / static_cast<std::ptrdiff_t>(sizeof(void*)));
#else
  return static_cast<int>((words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*)));
#endif
}

TEST(VirtualOrder, OfTheFactory) {
  using quantel::iFactory;
  EXPECT_EQ(kDestructorSlots + 0, Slot(&iFactory::registerClass));
  EXPECT_EQ(kDestructorSlots + 2, Slot(&iFactory::findService));
  EXPECT_EQ(kDestructorSlots + 13, Slot(&iFactory::instanceDestroyed));
  EXPECT_EQ(kDestructorSlots + 0, Slot(&quantel::iRegistrar::removeClass));
  EXPECT_EQ(kDestructorSlots + 0, Slot(&iFactory::iConstructor::create));
  EXPECT_EQ(kDestructorSlots + 1, Slot(&iFactory::iConstructor::createWith));
  EXPECT_EQ(kDestructorSlots + 2, Slot(&iFactory::iConstructor::classInfo));
  EXPECT_EQ(kDestructorSlots + 0, Slot(&iFactory::iClassInfo::guid));
  EXPECT_EQ(kDestructorSlots + 1, Slot(&iFactory::iClassInfo::name));
  EXPECT_EQ(kDestructorSlots + 2, Slot(&iFactory::iClassInfo::bases));
  EXPECT_EQ(kDestructorSlots + 3, Slot(&iFactory::iClassInfo::classInfo));
}

// Each operation stands right behind the one before it, from the first place on.
template <class... Operations>
void ExpectInThisOrder(Operations... operations) {
  int place = 0;
  for (const int slot : {Slot(operations)...}) {
    EXPECT_EQ(kDestructorSlots + place, slot) << "operation " << place;
    ++place;
  }
}

// The first slot behind a class's own: its table must not grow, either.
template <class Class>
struct Behind : Class {
  virtual void First() = 0;
  static int Place() { return Slot(&Behind::First); }
};

TEST(VirtualOrder, OfThePage) {
  using qplugin::iQpluginUI;
  using qplugin::iQpluginUI4;
  ExpectInThisOrder(&iQpluginUI::classInfo, &iQpluginUI::uiGuid, &iQpluginUI::renderGuid,
                    &iQpluginUI::moduleText, &iQpluginUI::setInputs, &iQpluginUI::setParams,
                    &iQpluginUI::setResult, &iQpluginUI::empty1, &iQpluginUI::empty2,
                    &iQpluginUI::parameterChanged, &iQpluginUI::mouseDown, &iQpluginUI::mouseUp,
                    &iQpluginUI::mouseMove, &iQpluginUI::empty3, &iQpluginUI::drawOverlays,
                    &iQpluginUI::empty4);
  ExpectInThisOrder(&iQpluginUI4::colourRequest, &iQpluginUI4::empty1, &iQpluginUI4::empty2,
                    &iQpluginUI4::empty3, &iQpluginUI4::empty4, &iQpluginUI4::empty5);
  EXPECT_EQ(kDestructorSlots + 16, Behind<iQpluginUI>::Place());
  EXPECT_EQ(kDestructorSlots + 6, Behind<iQpluginUI4>::Place());
}

TEST(VirtualOrder, OfTheRender) {
  using qplugin::iQpluginPreRender;
  using qplugin::iQpluginRender;
  ExpectInThisOrder(&iQpluginRender::classInfo, &iQpluginRender::renderGuid,
                    &iQpluginRender::setTarget, &iQpluginRender::setInputs,
                    &iQpluginRender::setParams, &iQpluginRender::renderFrame);
  ExpectInThisOrder(&iQpluginPreRender::preRender);
  EXPECT_EQ(kDestructorSlots + 6, Behind<iQpluginRender>::Place());
  EXPECT_EQ(kDestructorSlots + 1, Behind<iQpluginPreRender>::Place());
}

TEST(VirtualOrder, OfTheStore) {
  using qplugin::iQpluginParams;
  EXPECT_EQ(kDestructorSlots + 0, Slot(&iQpluginParams::getFloat));
  EXPECT_EQ(kDestructorSlots + 4, Slot(&iQpluginParams::setFloat));
  EXPECT_EQ(kDestructorSlots + 5, Slot(&iQpluginParams::getBool));
  EXPECT_EQ(kDestructorSlots + 6, Slot(&iQpluginParams::setBool));
  EXPECT_EQ(kDestructorSlots + 9, Slot(&iQpluginParams::getColour));
  EXPECT_EQ(kDestructorSlots + 11, Slot(&iQpluginParams::getList));
  EXPECT_EQ(kDestructorSlots + 16, Slot(&iQpluginParams::setList));
}

TEST(VirtualOrder, OfPicturesAndClips) {
  EXPECT_EQ(kDestructorSlots + 0, Slot(&qplugin::iQpluginInputs::mainInput));
  EXPECT_EQ(kDestructorSlots + 1, Slot(&qplugin::iQpluginInputs::namedInput));
  EXPECT_EQ(kDestructorSlots + 1, Slot(&qplugin::iQpluginSource::frame));
  EXPECT_EQ(kDestructorSlots + 1, Slot(&qplugin::iQpluginTarget::outputFrame));
  EXPECT_EQ(kDestructorSlots + 2, Slot(&qplugin::iQpluginTarget::format));
  EXPECT_EQ(kDestructorSlots + 0, Slot(&qplugin::iQpluginFormat::descriptor));
  EXPECT_EQ(kDestructorSlots + 1, Slot(&qplugin::iQpluginFormat::pixelAspect));
  EXPECT_EQ(kDestructorSlots + 2, Slot(&qplugin::iQpluginFormat::pictureSize));
  EXPECT_EQ(kDestructorSlots + 0, Slot(&qplugin::iQpluginImage::size));
  EXPECT_EQ(kDestructorSlots + 2, Slot(&qplugin::iQpluginImage::buffer));
}

TEST(VirtualOrder, OfModuleAndMessages) {
  EXPECT_EQ(kDestructorSlots + 0, Slot(&qplugin::iQpluginModule::moduleText));
  EXPECT_EQ(kDestructorSlots + 5, Slot(&qplugin::iQpluginModule::moduleText2));
  EXPECT_EQ(kDestructorSlots + 2, Slot(&qplugin::iQplugin::message));
}

TEST(VirtualOrder, OfTheHostsSideOfAPage) {
  using qplugin::iQpluginDialog;
  using qplugin::iQpluginOverlaySurface;
  EXPECT_EQ(kDestructorSlots + 0, Slot(&qplugin::iQpluginUIResult::update));
  EXPECT_EQ(kDestructorSlots + 1, Slot(&qplugin::iQpluginUIResult::overlaySurface));
  EXPECT_EQ(kDestructorSlots + 2, Slot(&qplugin::iQpluginUIResult::dialog));
  EXPECT_EQ(kDestructorSlots + 3, Slot(&qplugin::iQpluginUIResult::format));
  EXPECT_EQ(kDestructorSlots + 4, Slot(&qplugin::iQpluginUIResult2::timeline));
  EXPECT_EQ(kDestructorSlots + 10, Slot(&qplugin::iQpluginTimeline::frameCount));
  EXPECT_EQ(kDestructorSlots + 5, Slot(&iQpluginDialog::addColourBox));
  EXPECT_EQ(kDestructorSlots + 8, Slot(&iQpluginDialog::setWidgetVisible));
  EXPECT_EQ(kDestructorSlots + 9, Slot(&iQpluginDialog::isWidgetVisible));
  EXPECT_EQ(kDestructorSlots + 11, Slot(&iQpluginDialog::addButton));
  EXPECT_EQ(kDestructorSlots + 0, Slot(&iQpluginOverlaySurface::beginDraw));
  EXPECT_EQ(kDestructorSlots + 1, Slot(&iQpluginOverlaySurface::endDraw));
  EXPECT_EQ(kDestructorSlots + 3, Slot(&iQpluginOverlaySurface::drawLine));
  EXPECT_EQ(kDestructorSlots + 6, Slot(&iQpluginOverlaySurface::fillRect));
  EXPECT_EQ(kDestructorSlots + 7, Slot(&iQpluginOverlaySurface::frameRect));
}

}  // namespace
