#include "host/runner/DotGraph.hpp"
#include "host/runner/FlowFile.hpp"

#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

TEST(DotGraph, HasClustersBoxesAndEdges) {
    Problems problems;
    const FlowModel model = parseFlow(R"(version: 1
layouts: [sensors, main]
filters:
  - {name: imu, class: FilterImuSimulator, layout: sensors}
  - {name: rec, class: FilterRecordSensorFile}
connections:
  - imu.acc -> rec.input#1
  - "imu.a \"b\" -> rec.input#2 {buffer: 64, lifo: true}"
  - {from: imu.gyr, to: rec.input#3, lifo: true}
)",
                                      "f", lookUpEnvironment, problems);
    EXPECT_EQ(problems.toText(), "");
    EXPECT_EQ(makeDotGraph(model), R"(digraph flow {
  rankdir=LR;
  node [shape=box];
  subgraph cluster_0 {
    label="sensors";
    "imu" [label="imu\nFilterImuSimulator"];
  }
  subgraph cluster_1 {
    label="main";
    "rec" [label="rec\nFilterRecordSensorFile"];
  }
  "imu" -> "rec" [label="acc -> input#1"];
  "imu" -> "rec" [label="a \"b\" -> input#2\nbuffer 64, lifo"];
  "imu" -> "rec" [label="gyr -> input#3\nlifo"];
}
)");
}

}  // namespace
}  // namespace Quoril::Runner
