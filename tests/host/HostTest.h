// A fixture for tests of the host layer: process-wide settings are back at their defaults after
// each test, and no COM object is left over.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "host/CoreSupport/Variant.h"
#include "host/com/ComPtr.h"
#include "host/com/LiveObjects.h"

class HostTest : public testing::Test {
 protected:
  void SetUp() override {
    ::SetErrorInfo(0, nullptr);
    objectsBefore_ = quenra::LiveObjectCount();
    componentsBefore_ = quenra::LiveComponentCount();
  }

  void TearDown() override {
    quenra::EventLog::SetSink(nullptr);
    quenra::QUENRALocale::ResetLocale();
    quenra::QUENRALocale::SetAnsiCodePage(0);
    ::SetErrorInfo(0, nullptr);
    EXPECT_EQ(quenra::LiveObjectCount(), objectsBefore_) << "the test's own objects";
    EXPECT_EQ(quenra::LiveComponentCount(), componentsBefore_) << "the host's objects";
  }

  // The references that `object` has at this moment.
  static ULONG References(IUnknown* object) {
    object->AddRef();
    return object->Release();
  }

 private:
  LONG objectsBefore_ = 0;
  LONG componentsBefore_ = 0;
};
