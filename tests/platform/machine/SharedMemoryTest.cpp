#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

#include "platform/machine/SharedMemory.h"

TEST(SharedMemory, SizeIsFixedAndContentsCanBe) {
  const SharedMemory memory = SharedMemory::create(10000);
  ASSERT_TRUE(memory.isOpen());
  EXPECT_TRUE(memory.hasFixedSize(10000));
  EXPECT_FALSE(memory.hasFixedSize(9999));
  EXPECT_FALSE(memory.isSealed(10000));
  {
    const MemoryMapping written = memory.map(10000, MapAccess::write);
    EXPECT_EQ(written.bytes()[9999], 0);
    written.bytes()[9999] = 7;
    // Somebody can still write.
    EXPECT_FALSE(memory.seal());
  }
  EXPECT_TRUE(memory.seal());
  EXPECT_TRUE(memory.isSealed(10000));
  EXPECT_THROW(memory.map(10000, MapAccess::write), std::bad_alloc);
  EXPECT_EQ(memory.map(10000, MapAccess::read).bytes()[9999], 7);
  const MemoryMapping copy = memory.map(10000, MapAccess::privateCopy);
  copy.bytes()[9999] = 8;
  EXPECT_EQ(memory.map(10000, MapAccess::read).bytes()[9999], 7);
}

TEST(SharedMemory, OthersAreNotTrusted) {
  const SharedMemory shrinking(FileDescriptor(memfd_create("test", MFD_ALLOW_SEALING)));
  ASSERT_EQ(ftruncate(shrinking.descriptor().number(), 100), 0);
  EXPECT_FALSE(shrinking.hasFixedSize(100));
  const SharedMemory file(FileDescriptor(open("/proc/self/exe", O_RDONLY)));
  ASSERT_TRUE(file.isOpen());
  EXPECT_FALSE(file.hasFixedSize(100));
  EXPECT_FALSE(SharedMemory().hasFixedSize(0));
}
