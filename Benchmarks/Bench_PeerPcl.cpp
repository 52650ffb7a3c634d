// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Reads a binary PCD file with PCL and transforms it, whenever it is told to.
#include <chrono>
#include <cstdio>
#include <pcl/common/transforms.h>
#include <pcl/io/pcd_io.h>
#include <pcl/pcl_config.h>
#include <pcl/point_types.h>

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    Eigen::Matrix4f matrix = Eigen::Matrix4f::Identity();
    matrix.topRows<3>() << 0.8f, -0.6f, 0, 10, 0.6f, 0.8f, 0, 20, 0, 0, 1, 30;
    std::printf("ready PCL %s, PointXYZRGB of floats\n", PCL_VERSION_PRETTY);
    std::fflush(stdout);
    char acLine[64];
    while (std::fgets(acLine, sizeof acLine, stdin) != nullptr) {
        const auto begin = std::chrono::steady_clock::now();
        pcl::PointCloud<pcl::PointXYZRGB> cloud;
        if (pcl::io::loadPCDFile(argv[1], cloud) != 0) return 1;
        pcl::transformPointCloud(cloud, cloud, matrix);
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
        std::printf("%.6f\n", elapsed.count());
        std::fflush(stdout);
    }
    return 0;
}
