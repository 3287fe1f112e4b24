#pragma once

// Uploads of files to a cloud service, as the application sees them. Main thread.
class CloudUploading
{
public:
    virtual ~CloudUploading() = default;
    virtual bool isUploading() const = 0;
    virtual void cancelUploads() = 0;        // all; says nothing to the person
    virtual bool hasUploadsLeft() const = 0; // or some that were cancelled and are about to end
};
