#pragma once

#include "platform/pipewire/FakeCamera.h"
#include "platform/pipewire/FakeMicrophone.h"
