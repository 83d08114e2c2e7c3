#include <gtest/gtest.h>

#include "ExtCmInterceptorRepository.h"
#include "MoInterceptorBase.h"

namespace VorTest {

using VorExtCmRouterService::ExtCmInterceptorRepository;
using VorExtCmRouterService::MoInterceptorBase;

TEST(ExtCmInterceptorRepository, KeepsTheInterceptorThatIsThereUntilItsClassIsDeregistered) {
    auto& repository = ExtCmInterceptorRepository::instance();
    MoInterceptorBase first, second;
    EXPECT_EQ(repository.registerClass(first, "A"), VorReturnOk);
    EXPECT_EQ(repository.registerClass(second, "A"), VorReturnFailed);
    EXPECT_EQ(repository.find("A").get(), &first);
    repository.deregisterClass("B");
    EXPECT_EQ(repository.find("A").get(), &first);
    repository.deregisterClass("A");
    EXPECT_EQ(repository.find("A"), nullptr);
    EXPECT_EQ(repository.registerClass(second, "A"), VorReturnOk);
    EXPECT_EQ(repository.find("A").get(), &second);
    repository.deregisterClass("A");
}

}  // namespace VorTest
