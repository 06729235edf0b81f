// The classes of the media chain that cross as shared pointers, for each module that names them.
ORB_SHARED(orbelantine::IMediaBuffer)
ORB_SHARED(orbelantine::IMediaElement)
