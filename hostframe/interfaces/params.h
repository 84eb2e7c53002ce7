// SPDX-License-Identifier: BSD-3-Clause
// iQpluginParams: the host's store of parameter values.
#pragma once

#include "hostframe/interfaces/colour.h"
#include "hostframe/interfaces/visibility.h"
#include "hostframe/interfaces/wide_text.h"

namespace qplugin {

// Values are those of the frame at hand: animation is the host's affair.
// The second argument of getFloat and getBool is always 0.
class QTL_BORDER iQpluginParams {
 public:
  virtual ~iQpluginParams() = default;
  virtual double getFloat(const quantel::wstring& key, int zero) = 0;
  virtual void reserved1() {}
  virtual void reserved2() {}
  virtual void reserved3() {}
  virtual void setFloat(const quantel::wstring& key, const float& value) = 0;
  virtual bool getBool(const quantel::wstring& key, int zero) = 0;
  virtual void setBool(const quantel::wstring& key, bool value) = 0;
  virtual void reserved4() {}
  virtual void reserved5() {}
  virtual quantel::cColour getColour(const quantel::wstring& key,
                                     quantel::cColour defaultColour) = 0;
  virtual void reserved6() {}
  virtual int getList(const quantel::wstring& key) = 0;  // the entry, counted from 0
  virtual void reserved7() {}
  virtual void reserved8() {}
  virtual void reserved9() {}
  virtual void reserved10() {}
  virtual void setList(const quantel::wstring& key, int entry) = 0;
};

}  // namespace qplugin
